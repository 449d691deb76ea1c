% SPDX-License-Identifier: BSD-3-Clause
% The message of the error that a function without inputs raises, '' when it raises none.
function message = message_of(call)
  message = '';
  try
    call();
  catch caught
    message = caught.message;
  end
end
