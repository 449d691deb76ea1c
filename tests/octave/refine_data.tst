% SPDX-License-Identifier: BSD-3-Clause
% kelvane_refine on real measurements: one call with default options finds every optimum that is known from other solvers.

%!test  % pixels
%! for set = {'chessboard', 'bal', 'bal_adjusted', 'castle'}
%!   for problem = shared_problems(set{1}, 'pixel')
%!     [pose, info] = kelvane_refine(problem.start, problem.points, problem.observations, problem.intrinsics, ...
%!                                   'PoseFrame', 'world_from_camera');
%!     [turn, shift] = distance_from(problem, info.pose);
%!     assert(all([turn, shift] < 1e-8), problem.name);
%!     assert(info.exitflag > 0);
%!     assert(pose, kelvane_pose(info.pose, 'rotation_vector', 'world_from_camera'), 1e-14);
%!   end
%! end

%!test  % castle with its own distortion, k = -0.164224, put back into the observations: the cost counts in other pixels then,
%! % so the optimum is another one by a part of its uncertainty; from exact pixels it is the same
%! for problem = shared_problems('castle', 'pixel')
%!   camera = kelvane_camera('SIMPLE_RADIAL', [problem.intrinsics, -0.164224]);
%!   refined = @(seen) kelvane_refine(problem.start, problem.points, kelvane_distort(seen, camera), camera, ...
%!                                    'PoseFrame', 'world_from_camera', 'OutputForm', 'pose');
%!   [turn, shift] = distance_from(problem, refined(problem.observations));
%!   assert(all([turn, shift] < 1e-4), problem.name);
%!   exact = kelvane_project(problem.optimum, problem.points, problem.intrinsics, 'PoseFrame', 'world_from_camera');
%!   [turn, shift] = distance_from(problem, refined(exact));
%!   assert(all([turn, shift] < 1e-9), problem.name);
%! end

%!test  % directions, some of them more than 90 degrees off the axis
%! for set = {'omni', 'chessboard', 'bal', 'bal_adjusted', 'castle'}
%!   for problem = shared_problems(set{1}, 'chord')
%!     [~, info] = kelvane_refine(problem.start, problem.points, problem.observations, [], 'PoseFrame', ...
%!                                'world_from_camera');
%!     [turn, shift] = distance_from(problem, info.pose);
%!     assert(all([turn, shift] < 1e-6), problem.name);
%!     assert(info.exitflag > 0);
%!     assert(info.iterations <= 10);
%!   end
%! end

%!test  % crane has no optimum from elsewhere: start and data set's pose lead to the same one, which is near the latter
%! for kind = {'pixel', 'chord'}
%!   for problem = shared_problems('crane', kind{1})
%!     refined = @(start) kelvane_refine(start, problem.points, problem.observations, problem.intrinsics, ...
%!                                       'PoseFrame', 'world_from_camera', 'OutputForm', 'pose');
%!     [pose, info] = refined(problem.start);
%!     best = refined(problem.optimum);
%!     assert(info.exitflag > 0 && info.rms_after < info.rms_before / 10);
%!     assert({pose.rotation, pose.centre}, {best.rotation, best.centre}, 1e-8);
%!     [turn, shift] = distance_from(problem, pose);
%!     assert(turn < 0.1 * pi / 180 && shift < 0.005, problem.name);
%!   end
%! end

%!test  % the chessboard, where the optimum is known as a search vector
%! for id = 1:6
%!   view = chessboard_view(id);
%!   pose = kelvane_refine(view.start{1}, view.points, view.pixels, view.intrinsics, 'PoseFrame', 'world_from_camera');
%!   assert(pose, view.optimum{1}, 1e-8);
%! end
