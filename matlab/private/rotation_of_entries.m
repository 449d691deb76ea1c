% SPDX-License-Identifier: BSD-3-Clause
% The rotation matrix of the entries of one of the representations of kelvane_types. Axes and quaternions may have any
% length but zero.
function R = rotation_of_entries(representation, r)
  switch representation
    case 'rotation_vector'
      R = rotation_of_vector(r);
    case 'axis_angle'
      R = rotation_of_axis_angle(r(1:3) / norm(r(1:3)), r(4));
    case 'quaternion_xyzw'
      R = rotation_of_quaternion(r / norm(r));
  end
end
