% SPDX-License-Identifier: BSD-3-Clause
% Of a state of a scaled problem: its cost, the residuals (observed minus predicted), their weighted lengths and the points
% in the camera frame. A cost that is not finite, or of which rounding decides, counts as infinite.
function [cost, residuals, s, p] = residuals_at(problem, state)
  p = camera_points(state.R, state.t, problem.points);
  residuals = problem.observations - predicted(problem.camera, p);
  squares = residuals.^2;
  squares(problem.weights == 0) = 0;
  s = sqrt(sum(problem.weights .* squares, 1));
  cost = sum(problem.loss.rho(s, problem.scale));
  if ~isfinite(cost) || any(is_in_plane_of_centre(problem, p))
    cost = Inf;
  end
end

% Where the depth of a pixel's point is nothing but the rounding of its coordinates.
function yes = is_in_plane_of_centre(problem, p)
  yes = ~problem.camera.bearing & abs(p(3, :)) < 1e-13 * max(abs(p), [], 1) & any(problem.weights > 0, 1);
end
