% SPDX-License-Identifier: BSD-3-Clause
% The form of a pose that its class and size leave no doubt about; an error that lists what it may be otherwise.
function form = guessed_form(value)
  if isstruct(value)
    form = 'pose';
  elseif isnumeric(value) && isequal(size(value), [4, 4])
    form = 'matrix4x4';
  elseif isnumeric(value) && isequal(size(value), [3, 4])
    form = 'matrix3x4';
  elseif isnumeric(value) && isvector(value) && numel(value) == 6
    form = 'rotation_vector';
  elseif isa(value, 'rigidtform3d')
    form = 'rigidtform3d';
  elseif isnumeric(value) && isvector(value) && numel(value) == 7
    error('kelvane:noForm', ['Seven numbers can be an axis and angle or a quaternion. Say which, as ''PoseForm'' or ' ...
          'second input of kelvane_pose: ''axis_angle'', ''quaternion_xyzw'' or ''quaternion_wxyz''.']);
  elseif iscell(value)
    error('kelvane:noForm', ['A pose in two parts needs its form, as ''PoseForm'' or second input of kelvane_pose: ' ...
          '''rotation_centre'', ''rotation_translation'', ''opencv'' or ''colmap''.']);
  else
    error('kelvane:noForm', 'A %d x %d array of class %s is no pose. See the forms in the help of kelvane_pose.', ...
          size(value, 1), size(value, 2), class(value));
  end
end
