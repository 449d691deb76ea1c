% SPDX-License-Identifier: BSD-3-Clause
% What a piece of code prints, run in a workspace of its own.
function printed = printed_by(code)
  printed = evalc(code);
end
