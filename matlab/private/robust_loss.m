% SPDX-License-Identifier: BSD-3-Clause
% A loss: what a point with a residual of length s costs, the weight that stands in for it in a least squares step, and the
% derivative of that weight by s. c is the length where the loss leaves the square. tuning * sigma is the c with which 95 %
% of the information in points with the noise sigma in both coordinates is kept.
function loss = robust_loss(name)
  loss.name = one_of(name, {'none', 'huber', 'cauchy', 'tukey'}, 'kelvane:loss', 'loss');
  switch loss.name
    case 'none'
      loss.tuning = Inf;
      loss.rho = @(s, c) s.^2;
      loss.weight = @(s, c) ones(size(s));
      loss.slope = @(s, c) zeros(size(s));
    case 'huber'
      loss.tuning = 1.50114;
      loss.rho = @(s, c) min(s, c) .* (2 * s - min(s, c));
      loss.weight = @(s, c) c ./ max(s, c);
      loss.slope = @(s, c) -(s > c) .* c ./ max(s, c).^2;
    case 'cauchy'
      loss.tuning = 2.54864;
      loss.rho = @(s, c) c^2 * log1p((s / c).^2);
      loss.weight = @(s, c) 1 ./ (1 + (s / c).^2);
      loss.slope = @(s, c) -2 * s / c^2 ./ (1 + (s / c).^2).^2;
    case 'tukey'
      loss.tuning = 5.12299;
      loss.rho = @(s, c) part_of_square(min(s / c, 1).^2) .* min(s, c).^2;
      loss.weight = @(s, c) max(0, 1 - (s / c).^2).^2;
      loss.slope = @(s, c) -4 * s / c^2 .* max(0, 1 - (s / c).^2);
  end
end

% Tukey's loss as a part of s^2, with q = (s / c)^2: (1 - (1 - q)^3) / (3 q), which keeps its digits where q is small.
function y = part_of_square(q)
  y = 1 - q + q.^2 / 3;
end
