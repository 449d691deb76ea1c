% SPDX-License-Identifier: BSD-3-Clause
% The pose after one Gauss-Newton step from a view's start, by forward differences of a camera model of our own.
function x = difference_step(view, type, rotation_step, translation_step)
  x = view.start{representation_of(type)};
  steps = [rotation_step * ones(1, numel(x) - 3), translation_step * ones(1, 3)];
  prediction = predicted_pixels(view, type, x);
  J = zeros(numel(prediction), numel(x));
  for d = 1:numel(x)
    moved = x;
    moved(d) = moved(d) + steps(d);
    difference = predicted_pixels(view, type, moved) - prediction;
    J(:, d) = difference(:) / steps(d);
  end
  residual = view.pixels - prediction;
  singular = 1e-5 * norm(J);  % types 1 and 2 have a direction that changes nothing, up to the steps
  x = x + (pinv(J, singular) * residual(:))';
end
