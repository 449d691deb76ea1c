% SPDX-License-Identifier: BSD-3-Clause
% What kelvane_refine minimises: the slope of the cost that its help tells vanishes where it ends, by differences of the
% public prediction.

%!function c = squares(scene, pose, weights)
%!  r = kelvane_project(pose, scene.points, scene.K) - scene.pixels;
%!  c = sum(sum(weights .* r.^2));
%!endfunction

%!function matrices = some_matrices()
%!  matrices = {[700 0 320; 0 700 240; 0 0 1], [700 0 320; 0 500 240; 0 0 1], [700 150 320; 0 640 240; 0 0 1], ...
%!              [-700 40 320; 0 640 240; 0 0 1], [700 0 320; 0 -700 240; 0 0 1]};
%!endfunction

%!test  % pixels for every K: unequal focal lengths, skew, mirrored axes; with and without weights
%! for K = some_matrices()
%!   scene = noisy_scene(K{1}, 11);
%!   for weights = {1, linspace(0.2, 3, 30), reshape(linspace(0.1, 5, 60), 2, 30)}
%!     cost = @(pose) squares(scene, pose, weights{1});
%!     given = weights{1} .* ones(1, 30);
%!     [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, K{1}, 'Weights', given);
%!     assert(slope_of_cost(cost, pose, scene.distance), zeros(6, 1), 1e-6);
%!     assert(info.exitflag > 0);
%!     assert(info.rms_after, sqrt(cost(pose) / 30), -1e-12);
%!     assert(info.rms_before, sqrt(cost(scene.start) / 30), -1e-12);
%!     assert(info.rms_after < info.rms_before / 5);
%!     assert(info.iterations <= 7);  % every step is a whole one of Gauss and Newton's
%!   end
%! end

%!test  % a robust loss of a given scale is the one of the books
%! scene = noisy_scene([700 60 320; 0 600 240; 0 0 1], 12);
%! scene.pixels(:, 3:7:30) = scene.pixels(:, 3:7:30) + 40 * randn(2, 4);
%! c = 2.5;
%! rho.huber = @(s) (s <= c) .* s.^2 + (s > c) .* (2 * c * s - c^2);
%! rho.cauchy = @(s) c^2 * log(1 + s.^2 / c^2);
%! rho.tukey = @(s) c^2 / 3 * (1 - (s <= c) .* (1 - s.^2 / c^2).^3);
%! weights = linspace(0.5, 1.5, 30);
%! for loss = {'huber', 'cauchy', 'tukey'}
%!   lengths = @(pose) sqrt(weights .* sum((kelvane_project(pose, scene.points, scene.K) - scene.pixels).^2));
%!   cost = @(pose) sum(rho.(loss{1})(lengths(pose)));
%!   [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Weights', weights, 'Loss', ...
%!                                 loss{1}, 'LossScale', c);
%!   assert(slope_of_cost(cost, pose, scene.distance), zeros(6, 1), 1e-5);
%!   assert(info.loss_scale, c);
%!   assert(info.iterations <= 10, loss{1});  % the step knows that the weights change with it; otherwise up to 24
%!   assert(info.rms_after, sqrt(cost(pose) / 30), -1e-12);
%!   assert(any(info.inliers(3:7:30)), false);
%! end

%!test  % directions all around: the distance of unit vectors, with and without weights
%! randn('state', 13); rand('state', 13);
%! points = 6 * rand(3, 25) - 3;
%! truth = kelvane_pose([0.3 -0.5 0.2 0.4 -0.2 0.3], 'rotation_vector', 'world_from_camera');
%! start = kelvane_pose([0.4 -0.4 0.3 0.3 -0.3 0.5], 'rotation_vector', 'world_from_camera');
%! b = kelvane_project(truth, points, []) + 0.01 * randn(3, 25);
%! b = b ./ sqrt(sum(b.^2));
%! assert(sum(b(3, :) < 0) > 5);
%! for weights = {1, linspace(0.2, 3, 25), reshape(linspace(0.1, 5, 75), 3, 25)}
%!   cost = @(pose) sum(sum(weights{1} .* (kelvane_project(pose, points, []) - b).^2));
%!   [pose, info] = kelvane_refine(start, points, 7 * b, [], 'Weights', weights{1} .* ones(1, 25));
%!   assert(slope_of_cost(cost, pose, 3), zeros(6, 1), 1e-6);
%!   assert(info.exitflag > 0 && info.iterations < 20);
%!   assert(info.residuals, b - kelvane_project(pose, points, []), 1e-14);
%! end

%!test  % a weight of 0 leaves a point out
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 14);
%! few = kelvane_refine(scene.start, scene.points(:, 1:20), scene.pixels(:, 1:20), scene.K);
%! scene.pixels(:, 21:30) = 1e5;
%! scene.points(:, 21) = scene.start.centre + 3 * scene.start.rotation(:, 1);  % beside the camera: no finite pixel
%! scene.points(:, 22) = scene.start.centre;
%! [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Weights', ...
%!                               [ones(1, 20), zeros(1, 10)]);
%! assert(isfinite([info.rms_before, info.rms_after]), [true, true]);
%! assert({pose.rotation, pose.centre}, {few.rotation, few.centre}, 1e-9);

%!test  % a point that was not seen, or has no weight, is left out and counted
%! scene = noisy_scene([700 60 320; 0 600 240; 0 0 1], 16);
%! used = 4:27;
%! for loss = {'none', 'tukey'}
%!   [few, few_info] = kelvane_refine(scene.start, scene.points(:, used), scene.pixels(:, used), scene.K, 'Loss', loss{1});
%!   pixels = scene.pixels;
%!   pixels(1, [1, 2]) = NaN;
%!   pixels(:, 3) = NaN;
%!   weights = [1, 0, ones(1, 25), zeros(1, 3)];
%!   [pose, info] = kelvane_refine(scene.start, scene.points, pixels, scene.K, 'Weights', weights, 'Loss', loss{1});
%!   assert({pose.rotation, pose.centre}, {few.rotation, few.centre}, 1e-12);
%!   for name = {'rms_before', 'rms_plain_before', 'rms_inliers_before', 'rms_after', 'rms_plain_after', ...
%!               'rms_inliers_after', 'covariance', 'noise_sigma', 'num_inliers', 'num_behind', 'iterations'}
%!     assert(info.(name{1}), few_info.(name{1}), -1e-9);
%!   end
%!   left_out = ~ismember(1:30, used);
%!   assert([info.num_left_out, few_info.num_left_out], [6, 0]);
%!   assert(isnan(info.residuals), [left_out; left_out]);
%!   assert(info.inliers(used), few_info.inliers);
%!   assert(~any(info.inliers(left_out)));
%! end

%!test  % with a loss the RMS is told without it, too, and that of the inliers
%! scene = noisy_scene([700 60 320; 0 600 240; 0 0 1], 17);
%! scene.pixels(:, [4, 9]) = scene.pixels(:, [4, 9]) + 90;
%! [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Loss', 'tukey');
%! root = @(pose, which) sqrt(mean(sum((kelvane_project(pose, scene.points(:, which), scene.K) - scene.pixels(:, which)).^2)));
%! assert(~any(info.inliers([4, 9])) && info.num_inliers > 20);
%! assert(info.num_inliers, sum(info.inliers));
%! assert([info.rms_plain_before, info.rms_plain_after], [root(scene.start, 1:30), root(pose, 1:30)], -1e-12);
%! assert([info.rms_inliers_before, info.rms_inliers_after], ...
%!        [root(scene.start, info.inliers), root(pose, info.inliers)], -1e-12);
%! assert(info.rms_after < info.rms_plain_after);

%!test  % a loss whose scale is far above all residuals is none
%! scene = noisy_scene([700 60 320; 0 600 240; 0 0 1], 15);
%! plain = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K);
%! for loss = {'huber', 'cauchy', 'tukey'}
%!   for scale = [1e5, 1e9]
%!     [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Loss', loss{1}, 'LossScale', scale);
%!     assert(info.exitflag > 0, loss{1});
%!     assert({pose.rotation, pose.centre}, {plain.rotation, plain.centre}, 1e-8);
%!     assert(info.rms_after, sqrt(squares(scene, pose, 1) / 30), -1e-8);
%!   end
%! end
