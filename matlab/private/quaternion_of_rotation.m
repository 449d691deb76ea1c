% SPDX-License-Identifier: BSD-3-Clause
% The unit quaternion, 1 x 4 with the scalar last and not negative, of a rotation matrix.
function q = quaternion_of_rotation(R)
  % 4 q q' from the entries of R: its longest column is q times the largest element, which is at least 1/2.
  d = diag(R);
  Q = [1 + 2 * d(1) - sum(d), R(1, 2) + R(2, 1), R(1, 3) + R(3, 1), R(3, 2) - R(2, 3)
       0, 1 + 2 * d(2) - sum(d), R(2, 3) + R(3, 2), R(1, 3) - R(3, 1)
       0, 0, 1 + 2 * d(3) - sum(d), R(2, 1) - R(1, 2)
       0, 0, 0, 1 + sum(d)];
  Q = Q + triu(Q, 1)';
  [~, k] = max(diag(Q));
  q = Q(:, k)' / norm(Q(:, k));
  if q(4) < 0
    q = -q;
  end
end
