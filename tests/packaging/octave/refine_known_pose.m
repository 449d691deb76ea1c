% SPDX-License-Identifier: BSD-3-Clause
% Finds a known pose again, by the module alone and by kelvane_refine.
function refine_known_pose()
  points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
  truth = [0.3 -0.5 0.2, 0.1 -0.2 -4];
  start = truth + [0.02 -0.03 0.01, 0.1 0.1 0.2];
  pixels = kelvane_project(truth, points, [500 320 240], 'PoseFrame', 'world_from_camera');
  assert(kelvane_mex([start, 500 320 240], points, pixels), truth, 1e-9);
  pose = kelvane_refine(start, points, pixels, [500 320 240], 'PoseFrame', 'world_from_camera');
  assert(pose, truth, 1e-9);
end
