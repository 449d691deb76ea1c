% SPDX-License-Identifier: BSD-3-Clause
% A quaternion, scalar last, at unit length; an error when it has none.
function q = checked_quaternion(q)
  length_of_q = norm(q);
  if length_of_q < 1e-10
    error('kelvane:zeroQuaternion', 'A quaternion of length %.2g is no rotation; without a turn it is 1 and three zeros.', ...
          length_of_q);
  end
  q = q / length_of_q;
end
