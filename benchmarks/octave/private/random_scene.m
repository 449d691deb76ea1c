% SPDX-License-Identifier: BSD-3-Clause
% A camera that looks at N points in front of it: pixels with a noise of 0.5, and a start that is off by 1 degree and by
% 1 % of the distance. The same scene for the same N.
function [camera, points, pixels] = random_scene(N)
  randn('twister', 20240229 + N);
  rand('twister', 20240229 + N);
  intrinsics = [800, 320, 240];
  unit = @(v) v / norm(v);
  r = unit(randn(3, 1)) * (0.3 + 1.7 * rand());
  t = 10 * unit(randn(3, 1));
  seen = [640; 480] .* rand(2, N);
  depth = 4 + 4 * rand(1, N);
  points = rotation_and_left_jacobian(r) * ([(seen - [320; 240]) / 800; ones(1, N)] .* depth) + t;
  pixels = seen + 0.5 * randn(2, N);
  start_r = r + pi / 180 * unit(randn(3, 1));
  start_t = t + 0.06 * unit(randn(3, 1));
  camera = [start_r', start_t', intrinsics];
end
