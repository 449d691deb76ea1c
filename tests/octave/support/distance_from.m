% SPDX-License-Identifier: BSD-3-Clause
% How far a pose struct is from the optimum of a problem of shared_problems: radians, and parts of the distance.
function [turn, shift] = distance_from(problem, pose)
  optimum = kelvane_pose(problem.optimum, 'rotation_vector', 'world_from_camera');
  turn = norm(kelvane_pose({optimum.rotation' * pose.rotation, [0 0 0]}, 'rotation_translation', 'world_from_camera', ...
                           'rotation_vector', 'world_from_camera'));
  shift = norm(optimum.centre - pose.centre) / problem.distance;
end
