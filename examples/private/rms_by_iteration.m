% SPDX-License-Identifier: BSD-3-Clause
% The RMS of a view's start and after each iteration of a type, one iteration in a call.
function rms = rms_by_iteration(view, type, num_iterations)
  % Type 0 makes three iterations in a call, but no decrease reaches this min_y_step: the second ends the call, and the
  % first is kept.
  one_iteration = [0, 0, 1e38, 0];
  poses = refine_until_still(view, type, one_iteration, num_iterations);
  rms = zeros(1, size(poses, 1));
  for k = 1:numel(rms)
    rms(k) = rms_of_view(view, type, poses(k, :));
  end
end
