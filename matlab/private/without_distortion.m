% SPDX-License-Identifier: BSD-3-Clause
% Image points (2 x n, in units of the focal length) without their radial distortion x (1 + k1 r^2 + k2 r^4), r = |x|. NaN
% where no point can have come from: the image of a lens with falling distortion ends where it turns back on itself.
function x = without_distortion(x, k1, k2)
  if k1 == 0 && k2 == 0
    return;
  end
  bent = @(r) r .* (1 + r.^2 .* (k1 + r.^2 * k2));
  distorted = sqrt(sum(x.^2, 1));
  high = turning_radius(k1, k2);
  if isinf(high)
    high = max([1, distorted]);
    while bent(high) < max([0, distorted])
      high = 2 * high;
    end
  end
  beyond = distorted > bent(high);
  low = zeros(size(distorted));
  high = high * ones(size(distorted));
  for halving = 1:100  % to the last bit of any radius above 1e-14; it never leaves the branch that begins at 0
    middle = (low + high) / 2;
    is_low = bent(middle) < distorted;
    low(is_low) = middle(is_low);
    high(~is_low) = middle(~is_low);
  end
  factor = high ./ distorted;
  factor(distorted == 0) = 1;
  factor(beyond) = NaN;
  x = x .* factor;
end

% The least radius where the distorted one no longer grows: 1 + 3 k1 r^2 + 5 k2 r^4 = 0.
function r = turning_radius(k1, k2)
  squares = roots([5 * k2, 3 * k1, 1]);
  squares = squares(imag(squares) == 0 & real(squares) > 0);
  r = sqrt(min([Inf; squares]));
end
