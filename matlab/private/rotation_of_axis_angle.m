% SPDX-License-Identifier: BSD-3-Clause
% The rotation matrix of a unit axis and an angle in radians (derivations.md, Eq. 12).
function R = rotation_of_axis_angle(n, angle)
  S = cross_matrix(n);
  R = eye(3) + sin(angle) * S + 2 * sin(angle / 2)^2 * S * S;
end
