% SPDX-License-Identifier: BSD-3-Clause
% How steep a cost is at a pose struct, by a fourth-order stencil: 6 x 1 slopes over the square root of the curvature and the
% cost, so that 0 is the least cost and about 1 is as far off as the noise. cost(pose) must be a sum of squares or losses.
function slopes = slope_of_cost(cost, pose, distance)
  slopes = zeros(6, 1);
  h = 1e-5;
  here = cost(pose);
  for k = 1:6
    along = @(step) cost(moved_pose(pose, step * ((1:6)' == k), distance));
    slope = (8 * (along(h) - along(-h)) - along(2 * h) + along(-2 * h)) / (12 * h);
    slopes(k) = slope / sqrt((along(h) - 2 * here + along(-h)) / h^2 * here);
  end
end

function pose = moved_pose(pose, motion, distance)
  pose.rotation = pose.rotation * expm([0, -motion(3), motion(2); motion(3), 0, -motion(1); -motion(2), motion(1), 0]);
  pose.centre = pose.centre + motion(4:6) * distance;
end
