% SPDX-License-Identifier: BSD-3-Clause
% The average time of one of num_calls calls of a function without arguments.
function seconds = seconds_per_call(call, num_calls)
  start = tic();
  for i = 1:num_calls
    x = call(); %#ok<NASGU> kelvane_mex insists on one output
  end
  seconds = toc(start) / num_calls;
end
