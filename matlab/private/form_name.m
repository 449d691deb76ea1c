% SPDX-License-Identifier: BSD-3-Clause
% The full name of a form of a pose, '' for none.
function form = form_name(form)
  if isempty(form)
    form = '';
  else
    forms = {'matrix4x4', 'matrix3x4', 'rotation_centre', 'rotation_translation', 'rotation_vector', 'axis_angle', ...
             'quaternion_xyzw', 'quaternion_wxyz', 'opencv', 'colmap', 'rigidtform3d', 'pose'};
    form = one_of(form, forms, 'kelvane:poseForm', 'form of a pose');
  end
end
