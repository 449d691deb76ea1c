% SPDX-License-Identifier: BSD-3-Clause
% The entries, in a row, of a rotation matrix in one of the representations of kelvane_types.
function r = rotation_entries(representation, R)
  switch representation
    case 'rotation_vector'
      r = vector_of_rotation(R);
    case 'axis_angle'
      r = vector_of_rotation(R);
      angle = norm(r);
      if angle == 0
        r = [0, 0, 1, 0];
      else
        r = [r / angle, angle];
      end
    case 'quaternion_xyzw'
      r = quaternion_of_rotation(R);
  end
end
