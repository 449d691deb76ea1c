% SPDX-License-Identifier: BSD-3-Clause
% The 6 x 6 matrix that turns the motion of a module's step into Gauss and Newton's step for the cost, C = H \ S (Eq. 42):
% S belongs to the least squares problem that the step solves, H to the cost. [] where the two are the same, and where H
% does not have a least value.
function C = step_correction(problem, state)
  C = [];
  same = ~problem.camera.bearing && strcmp(problem.loss.name, 'none') && problem.camera.A(1, 2) == 0;
  if same
    return;
  end
  [~, residuals, s, p] = residuals_at(problem, state);
  [J, rays] = tangent_jacobian(problem.camera, state.R, p);
  H = cost_matrix(problem, J, residuals, s);
  [~, ~, d] = descent_system(problem, state);
  if problem.camera.bearing
    rows = rays;
  else
    rows = jacobian_of_prediction(problem, J);
  end
  S = rows' * (d(:) .* rows);
  scale = 1 ./ sqrt(max(diag(S), realmin));
  [~, indefinite] = chol(H .* (scale * scale') - 1e-10 * eye(6));
  if ~indefinite
    C = H \ S;
  end
end

% The module predicts q, and the pixel is B * q plus the principal point.
function rows = jacobian_of_prediction(problem, J)
  B = problem.camera.A / problem.focal;
  rows = zeros(size(J));
  rows(2:2:end, :) = J(2:2:end, :) / B(2, 2);
  rows(1:2:end, :) = (J(1:2:end, :) - B(1, 2) * rows(2:2:end, :)) / B(1, 1);
end
