% SPDX-License-Identifier: BSD-3-Clause
% Half the second derivative of the cost by the pose, 6 x 6, but for the curvature of the prediction: w J'WJ of every point
% and what the change of its weight w adds. J is what tangent_jacobian returns.
function H = cost_matrix(problem, J, residuals, s)
  [d, n] = size(residuals);
  w = problem.loss.weight(s, problem.scale);
  all_weights = problem.weights .* w;
  H = J' * (all_weights(:) .* J);
  slope = problem.loss.slope(s, problem.scale);
  bent = slope ~= 0 & s > 0;
  if any(bent)
    pull = reshape(sum(reshape((problem.weights(:) .* residuals(:)) .* J, d, n, 6), 1), n, 6);
    pull = pull(bent, :);
    H = H + pull' * ((slope(bent) ./ s(bent))' .* pull);
  end
end
