% SPDX-License-Identifier: BSD-3-Clause
% The message of a failed check as Octave shows it: the function's name before it, one newline less at its end.
function message = report(line, details)
  message = sprintf(['kelvane_mex: kelvane_mex.cpp(%d)\n' ...
                     'void mexFunction(int, mxArray**, int, const mxArray**)\nDetails: %s'], line, details);
end
