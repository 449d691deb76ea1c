% SPDX-License-Identifier: BSD-3-Clause
% p = scene(N), p = scene(N, intrinsics): N points that a camera sees with a noise of 0.5 pixels, the same for the same
% arguments: what kelvane_batch takes, from a start that is off by about 1 degree and 1 %, and camera, a pinhole as
% kelvane_mex takes it.
function p = scene(N, intrinsics)
  if nargin < 2
    intrinsics = [600, 320, 240];
  end
  rand('twister', N);
  randn('twister', N);
  r = randn(1, 3);
  x = [r / norm(r) * (0.3 + 1.7 * rand()), 5 * randn(1, 3)];
  truth = kelvane_pose(x, 'rotation_vector', 'world_from_camera');
  rays = [([640; 480] .* rand(2, N) - [320; 240]) / 600; ones(1, N)];
  p.points = truth.rotation * (rays .* (4 + 4 * rand(1, N))) + truth.centre;
  p.observations = kelvane_project(truth, p.points, intrinsics) + 0.5 * randn(2, N);
  p.intrinsics = intrinsics;
  x += [0.01 * randn(1, 3), 0.035 * randn(1, 3)];
  p.start = kelvane_pose(x, 'rotation_vector', 'world_from_camera');
  p.camera = [x, 600, 320, 240];
end
