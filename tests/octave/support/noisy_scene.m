% SPDX-License-Identifier: BSD-3-Clause
% Thirty points in a cube, the pixels that a camera with K sees with noise of one pixel, a start nearby and the true pose.
function scene = noisy_scene(K, seed)
  randn('state', seed); rand('state', seed);
  scene.points = 2 * rand(3, 30) - 1;
  scene.K = K;
  scene.truth = kelvane_pose([0.3 -0.5 0.2 1.8 -0.2 -3.6], 'rotation_vector', 'world_from_camera');
  scene.pixels = kelvane_project(scene.truth, scene.points, K) + randn(2, 30);
  scene.start = kelvane_pose([0.35 -0.45 0.22 1.7 -0.3 -3.8], 'rotation_vector', 'world_from_camera');
  scene.distance = 4;
end
