% SPDX-License-Identifier: BSD-3-Clause
% The rotation matrix of a rotation vector (unit axis times angle in radians), of any length.
function R = rotation_of_vector(r)
  angle = norm(r);
  if angle == 0
    R = eye(3);
  else
    R = rotation_of_axis_angle(r / angle, angle);
  end
end
