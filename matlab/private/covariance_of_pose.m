% SPDX-License-Identifier: BSD-3-Clause
% The 6 x 6 covariance of a refined pose in the tangent of tangent_jacobian, and the noise of a residual with weight 1: of
% the residuals themselves, or the given one (Eqs. 43 to 45). determined tells whether the points fix all six directions;
% where they do not, the covariance is infinite, and NaN where J is not finite.
function [covariance, noise_sigma, determined] = covariance_of_pose(J, s, weights, inliers, loss, scale, noise_sigma)
  used = any(weights > 0, 1);
  if ~isempty(noise_sigma)
    [a, b] = expected_for_noise(loss, scale, noise_sigma);
    used = used & inliers;
  else
    w = loss.weight(s(used), scale);
    a = mean(w + s(used) .* loss.slope(s(used), scale) / 2);
    excess = min(2 * sum(used), sum(weights(:) > 0)) - 6;  % equations over unknowns; a direction counts as two
    if excess <= 0
      excess = NaN;
    end
    b = sum((w .* s(used)).^2) / excess;
    noise_sigma = sqrt(b);
    if ~strcmp(loss.name, 'none')
      noise_sigma = noise_of_lengths(s(used)) * sqrt(1 + 6 / excess);
    end
  end
  rows = sqrt(weights(:)) .* J;
  rows = rows(reshape(used & true(size(weights)), [], 1), :);
  if ~all(isfinite(rows(:)))
    covariance = NaN(6);
    determined = false;
    return;
  end
  lengths = max(sqrt(sum(rows.^2, 1)), realmin);
  [~, triangle] = qr(rows ./ lengths, 0);
  [~, singular, V] = svd(triangle);
  singular = diag(singular);
  determined = numel(singular) == 6 && singular(6) > 1e-12 * singular(1);
  if determined
    half = V ./ singular' ./ lengths';
    covariance = b / a^2 * (half * half');
  else
    covariance = Inf(6);
  end
end

% Over normal noise of both coordinates, by the midpoint rule in the residual's length: a, the mean of w + s w' / 2, and b,
% half the mean of (w s)^2.
function [a, b] = expected_for_noise(loss, scale, noise_sigma)
  step = 0.01;
  u = step / 2:step:8;
  density = step * u .* exp(-u.^2 / 2);
  s = u * noise_sigma;
  w = loss.weight(s, scale);
  a = sum((w + s .* loss.slope(s, scale) / 2) .* density);
  b = sum((w .* s).^2 .* density) / 2;
end
