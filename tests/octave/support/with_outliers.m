% SPDX-License-Identifier: BSD-3-Clause
% A problem of shared_problems with a fifth of its pixels moved anywhere in the rectangle that the pixels fill.
function problem = with_outliers(problem, seed)
  randn('state', seed); rand('state', seed);
  pixels = problem.observations;
  n = size(pixels, 2);
  [~, order] = sort(rand(1, n));
  moved = order(1:round(0.2 * n));
  low = min(pixels, [], 2);
  problem.observations(:, moved) = low + (max(pixels, [], 2) - low) .* rand(2, numel(moved));
end
