% SPDX-License-Identifier: BSD-3-Clause
% What a step of the module is made of (derivations.md, Eqs. 37 to 39), in the rows of its prediction q: v, minus half the
% gradient of the cost by q, and d, the diagonal matrix by which the step weighs q. All are d x n, like the observations.
function [q, v, d] = descent_system(problem, state)
  [~, residuals, s, p] = residuals_at(problem, state);
  weights = problem.weights .* problem.loss.weight(s, problem.scale);
  if problem.camera.bearing
    q = p;
    distance = sqrt(sum(p.^2, 1));
    e = p ./ distance;
    pull = weights .* residuals;
    v = (pull - e .* sum(e .* pull, 1)) ./ distance;
    d = ones(3, 1) .* (max(weights, [], 1) ./ distance.^2);
  else
    q = problem.focal * [p(1, :) ./ p(3, :); p(2, :) ./ p(3, :)];
    B = problem.camera.A / problem.focal;
    v = B' * (weights .* residuals);
    d = (B.^2)' * weights;
  end
end
