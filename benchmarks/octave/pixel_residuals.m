% SPDX-License-Identifier: BSD-3-Clause
% [residuals, J] = pixel_residuals(x, problem): u of all points, then v, minus what was seen, at the 6 x 1 rotation vector
% (camera to world) and centre x, in plain vectorised m-code. With p = exp(-[r]x) (X - t), a = p1 / p3 and b = p2 / p3:
% dp/dr = [p]x L(-r), L the left Jacobian, and dp/dt = -R'.
function [residuals, J] = pixel_residuals(x, problem)
  f = problem.camera(7);
  [Rt, L] = rotation_and_left_jacobian(-x(1:3));
  p = Rt * (problem.points - x(4:6));
  a = (p(1, :) ./ p(3, :))';
  b = (p(2, :) ./ p(3, :))';
  residuals = [f * a + problem.camera(8) - problem.observations(1, :)'; f * b + problem.camera(9) - problem.observations(2, :)'];
  scale = (f ./ p(3, :))';
  zero = zeros(size(a));
  by_turn = f * [a .* b, -1 - a .* a, b; 1 + b .* b, -a .* b, -a];   % d(u; v)/dp [p]x
  by_motion = [scale, zero, -scale .* a; zero, scale, -scale .* b];  % d(u; v)/dp
  J = [by_turn * L, by_motion * -Rt];
end

% Of a rotation vector whose length is neither 0 nor tiny.
function [R, L] = rotation_and_left_jacobian(r)
  angle = norm(r);
  cross_matrix = [0, -r(3), r(2); r(3), 0, -r(1); -r(2), r(1), 0];
  square = cross_matrix * cross_matrix;
  versine = (1 - cos(angle)) / angle^2;
  R = eye(3) + sin(angle) / angle * cross_matrix + versine * square;
  L = eye(3) + versine * cross_matrix + (angle - sin(angle)) / angle^3 * square;
end
