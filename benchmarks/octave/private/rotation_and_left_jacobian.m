% SPDX-License-Identifier: BSD-3-Clause
% exp([r]x) and the left Jacobian of the rotation vector r, whose length is neither 0 nor tiny.
function [R, L] = rotation_and_left_jacobian(r)
  angle = norm(r);
  cross_matrix = [0, -r(3), r(2); r(3), 0, -r(1); -r(2), r(1), 0];
  square = cross_matrix * cross_matrix;
  s = sin(angle);
  versine = (1 - cos(angle)) / angle^2;
  R = eye(3) + s / angle * cross_matrix + versine * square;
  L = eye(3) + versine * cross_matrix + (angle - s) / angle^3 * square;
end
