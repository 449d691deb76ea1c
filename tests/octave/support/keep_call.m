% SPDX-License-Identifier: BSD-3-Clause
% An OutputFcn that appends what it was called with to the global list seen.
function stop = keep_call(pose, values, state)
  global seen
  seen{end + 1} = {pose, values, state};
  stop = false;
end
