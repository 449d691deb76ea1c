% SPDX-License-Identifier: BSD-3-Clause
% The rotation vector, 1 x 3 with a length of at most pi, of a rotation matrix.
function r = vector_of_rotation(R)
  q = quaternion_of_rotation(R);
  half_sine = norm(q(1:3));
  if half_sine == 0
    r = [0, 0, 0];
  else
    r = 2 * atan2(half_sine, q(4)) * (q(1:3) / half_sine);
  end
end
