% SPDX-License-Identifier: BSD-3-Clause
% What the covariance of kelvane_refine says against the errors of num_draws simulated observations with normal noise, a
% tenth of a scene's size in pixels or directions. loss as of kelvane_refine, or 'directions'. ratios: standard deviation of
% the errors over the one that is told, 6 x 1. mean_square: of the errors in units of the covariance, which is 6.
function [ratios, mean_square] = covariance_ratios(loss, num_draws, seed)
  randn('state', seed); rand('state', seed);
  truth = kelvane_pose([0.3 -0.5 0.2 0.4 -0.2 -4], 'rotation_vector', 'world_from_camera');
  points = 2 * rand(3, 40) - 1;
  intrinsics = [800, 640, 480];
  sigma = 1;
  options = {'Loss', loss};
  if strcmp(loss, 'directions')
    intrinsics = [];
    sigma = 1e-3;
    options = {};
  end
  exact = kelvane_project(truth, points, intrinsics);
  errors = zeros(6, num_draws);
  deviations = zeros(6, num_draws);
  squares = zeros(1, num_draws);
  for k = 1:num_draws
    [pose, info] = kelvane_refine(truth, points, exact + sigma * randn(size(exact)), intrinsics, options{:});
    D = truth.rotation' * pose.rotation;
    errors(:, k) = [D(3, 2) - D(2, 3); D(1, 3) - D(3, 1); D(2, 1) - D(1, 2); 2 * (pose.centre - truth.centre)] / 2;
    deviations(:, k) = sqrt(diag(info.covariance));
    squares(k) = errors(:, k)' * (info.covariance \ errors(:, k));
  end
  ratios = sqrt(mean(errors.^2, 2)) ./ sqrt(mean(deviations.^2, 2));
  mean_square = mean(squares);
end
