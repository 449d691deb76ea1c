% SPDX-License-Identifier: BSD-3-Clause
% A refinement in coordinates of its own: the world is moved, turned and scaled so that the points are centred at 0, their
% mean square distance from the camera is 1, and the camera starts with the turn reference_rotation. There all types are far
% from the rotations where their derivatives vanish or are not finite, and the columns of the Jacobian are of like size.
% Points without weight are left out.
function problem = scaled_problem(pose, points, observations, camera, weights, loss, type, finite_difference)
  used = any(weights > 0, 1);
  points = points(:, used);
  observations = observations(:, used);
  weights = weights(:, used);
  problem = struct('camera', camera, 'weights', weights, 'loss', loss, 'type', type, ...
                   'finite_difference', finite_difference, 'scale', Inf);
  problem.origin = mean(points, 2);
  problem.unit = sqrt(mean(sum((points - pose.centre).^2, 1)));
  if problem.unit == 0
    error('kelvane:allAtCentre', 'All points lie at the camera centre.');
  end
  problem.world_turn = reference_rotation() * pose.rotation';
  problem.points = problem.world_turn * (points - problem.origin) / problem.unit;
  problem.observations = observations;
  problem.start.R = reference_rotation();
  problem.start.t = problem.world_turn * (pose.centre - problem.origin) / problem.unit;
  if camera.bearing
    problem.focal = 1;
  else
    problem.focal = sqrt(abs(det(camera.A)));
  end
end

% A quarter turn about (1, 1, 1): no element of any representation is 0, and it takes a turn of 90 degrees to come to the
% identity or to half a turn.
function R = reference_rotation()
  R = rotation_of_axis_angle([1, 1, 1] / sqrt(3), pi / 2);
end
