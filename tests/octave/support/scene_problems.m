% SPDX-License-Identifier: BSD-3-Clause
% Problems of kelvane_batch: n noisy scenes.
function problems = scene_problems(n)
  for k = n:-1:1
    scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], k);
    problems(k) = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
  end
end
