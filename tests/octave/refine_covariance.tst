% SPDX-License-Identifier: BSD-3-Clause
% The covariance of kelvane_refine against simulated noise. 2,000 draws are in docs/refinement.md; the bounds here are four
% standard deviations of what 100 leave to chance.

%!function C = covariance_of_view(view, varargin)
%!  [~, info] = kelvane_refine(view.start{1}, view.points, view.pixels, view.intrinsics, 'PoseFrame', ...
%!                             'world_from_camera', varargin{:});
%!  C = info.covariance;
%!endfunction

%!test  % pixels and directions, with the noise from the residuals
%! for loss = {'none', 'directions', 'tukey'}
%!   num_draws = 100;
%!   [ratios, mean_square] = covariance_ratios(loss{1}, num_draws, 7);
%!   assert(all(abs(ratios - 1) < 4 / sqrt(2 * num_draws)), loss{1});
%!   % With an estimated noise of 74 degrees of freedom the mean is 6 * 74 / 72, its relative variance 2 / 6 + 2 / 70 a draw.
%!   expected = 6 * 74 / 72;
%!   assert(mean_square, expected, 4 * expected * sqrt((2 / 6 + 2 / 70) / num_draws));
%! end

%!test  % with NoiseSigma the covariance is that of the noise, not of the residuals, and goes with its square
%! view = chessboard_view(3);
%! covariance = @(sigma, varargin) covariance_of_view(view, 'NoiseSigma', sigma, varargin{:});
%! assert(covariance(4), 16 * covariance(1), -1e-9);
%! [~, info] = kelvane_refine(view.start{1}, view.points, view.pixels, view.intrinsics, 'PoseFrame', 'world_from_camera');
%! assert(covariance(info.noise_sigma), info.covariance, -2e-5);  % of the midpoint rule
%! assert(info.noise_sigma^2, sum(info.residuals(:).^2) / 102, -1e-9);
%! % Four times the weight is half the noise.
%! assert(covariance(1, 'Weights', 4 * ones(1, 54)), covariance(0.5), -1e-6);
%! % A robust loss keeps 95 % of the information of what it does not leave out.
%! lost = covariance(1, 'Loss', 'huber', 'LossScale', 1.50114) ./ covariance(1);
%! assert(diag(lost), ones(6, 1) / 0.95, 1e-3);

%!test  % with a loss the noise is that of the median, of one pixel here: 20 * 30 points leave 3 % to chance
%! for loss = {'huber', 'cauchy', 'tukey'}
%!   for seed = 20:-1:1
%!     scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 40 + seed);
%!     [~, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Loss', loss{1});
%!     noise(seed) = info.noise_sigma;
%!   end
%!   assert(mean(noise), 1, 4 * 0.03);
%! end

%!test  % equations without weight are not counted: eight are left of ten, and a direction still counts as two
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 3);
%! points = scene.points(:, 1:5);
%! W = ones(2, 5);
%! W(2, 4) = 0;
%! W(1, 5) = 0;
%! [~, info] = kelvane_refine(scene.start, points, scene.pixels(:, 1:5), scene.K, 'Weights', W);
%! assert(info.noise_sigma^2, sum(W(:) .* info.residuals(:).^2) / (8 - 6), -1e-9);
%! directions = [(scene.pixels(:, 1:5) - [320; 240]) / 700; ones(1, 5)];
%! W = ones(3, 5);
%! W(2, 4) = 0;
%! W(1, 5) = 0;
%! [~, info] = kelvane_refine(scene.start, points, directions, [], 'Weights', W);
%! assert(info.noise_sigma^2, sum(W(:) .* info.residuals(:).^2) / (10 - 6), -1e-9);

%!test  % points on a line leave the camera free to turn about it: said, and told as infinite
%! points = [0; 0; 5] + [1; 0.2; 0.1] * [-2, -1, 0, 1, 2];
%! truth = kelvane_pose({eye(3), [0 0 0]}, 'rotation_centre', 'world_from_camera');
%! pixels = kelvane_project(truth, points, [500 0 0]);
%! start = kelvane_pose({[0.01; 0.02; 0], [0.1; 0; 0]}, 'opencv');
%! [~, info] = kelvane_refine(start, points, pixels, [500 0 0]);
%! assert(info.exitflag, -4);
%! assert(~isempty(strfind(info.message, 'do not determine the pose')));
%! assert(info.covariance, Inf(6));

%!test  % three points determine the pose, but leave nothing to tell the noise from
%! points = [0 1 0; 0 0 1; 5 5 6];
%! truth = kelvane_pose({eye(3), [0 0 0]}, 'rotation_centre', 'world_from_camera');
%! pixels = kelvane_project(truth, points, [500 0 0]);
%! start = kelvane_pose({[0.01; 0.02; 0], [0.01; 0; 0]}, 'opencv');
%! [pose, info] = kelvane_refine(start, points, pixels, [500 0 0]);
%! assert(pose.centre, [0; 0; 0], 1e-9);
%! assert(all(isnan(info.covariance(:))));
%! [~, info] = kelvane_refine(start, points, pixels, [500 0 0], 'NoiseSigma', 1);
%! assert(all(isfinite(info.covariance(:))));
