% SPDX-License-Identifier: BSD-3-Clause
% kelvane_refine from starts far off: no pose is worse than its start, there is no error and no end in sight of none. How
% many arrive is in docs/refinement.md.

%!test
%! for bearing = [false, true]
%!   scenes = arrayfun(@(k) far_scene(k, bearing), 1:12);
%!   for seed = 1000:1005
%!     tally = refine_far_starts(scenes, 24, seed);
%!     assert(~any([tally.worse, tally.errors, tally.endless]), sprintf('seed %d', seed));
%!     assert(tally.found >= 22);
%!   end
%! end

%!test  % where the whole step would raise the cost a part of it is taken
%! for seed = [202, 217, 237, 692]
%!   scene = far_scene(1 + mod(seed, 12), false);
%!   rand('state', seed); randn('state', seed);
%!   start = far_start(scene.optimum, scene.points);
%!   rms = @(pose) sqrt(mean(sum((kelvane_project(pose, scene.points, scene.intrinsics) - scene.observations).^2)));
%!   x = [kelvane_pose(start, 'rotation_vector', 'world_from_camera'), scene.intrinsics];
%!   whole = kelvane_mex(x, scene.points, scene.observations, [0, 0, 1e38, 0], 0);
%!   assert(rms(kelvane_pose(whole, 'rotation_vector', 'world_from_camera')) > 1.1 * rms(start));
%!   [pose, info] = kelvane_refine(start, scene.points, scene.observations, scene.intrinsics);
%!   assert(info.history(2).rms < rms(start));
%!   assert(pose.centre, scene.optimum.centre, 1e-6);
%! end
