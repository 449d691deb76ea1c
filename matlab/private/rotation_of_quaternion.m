% SPDX-License-Identifier: BSD-3-Clause
% The rotation matrix of a unit quaternion, scalar last (derivations.md, Eq. 3).
function R = rotation_of_quaternion(q)
  S = cross_matrix(q(1:3));
  R = eye(3) + 2 * q(4) * S + 2 * S * S;
end
