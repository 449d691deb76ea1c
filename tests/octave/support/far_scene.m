% SPDX-License-Identifier: BSD-3-Clause
% Scene k of those that far starts are tried on: 1 to 6 the chessboard views, 7 to 12 forty points in a cube seen with noise
% of one pixel, a different cube for each. With bearings the pixels are turned into directions. optimum is the refined pose
% from the true one, or the best known.
function scene = far_scene(k, bearing)
  if k <= 6
    view = chessboard_view(k);
    scene = struct('points', view.points, 'observations', view.pixels, 'intrinsics', view.intrinsics);
    truth = kelvane_pose(view.optimum{1}, 'rotation_vector', 'world_from_camera');
  else
    randn('state', k); rand('state', k);
    scene.points = 2 * rand(3, 40) - 1;
    scene.intrinsics = [800, 640, 480];
    truth = kelvane_pose({[0.1, -0.2, 0.3] * k, [0, 0, 4]}, 'opencv');
    scene.observations = kelvane_project(truth, scene.points, scene.intrinsics) + randn(2, 40);
  end
  if bearing
    f = scene.intrinsics;
    u = scene.observations;
    scene.observations = [(u - f(2:3)') / f(1); ones(1, size(u, 2))];
    scene.intrinsics = [];
  end
  scene.optimum = kelvane_refine(truth, scene.points, scene.observations, scene.intrinsics);
end
