% SPDX-License-Identifier: BSD-3-Clause
% An OutputFcn that closes all figures, as a user may at any time.
function stop = close_all(~, ~, ~)
  close('all');
  stop = false;
end
