% SPDX-License-Identifier: BSD-3-Clause
% The struct of kelvane_pose for a value in a known form and frame.
function pose = read_pose(value, form, frame)
  if strcmp(form, 'pose')
    pose = checked_pose(value);
    return;
  end
  [Q, s] = parts_of(value, form);
  pose = struct('rotation', Q, 'centre', s(:), 'form', form, 'frame', frame);
  if strcmp(frame, 'camera_from_world')
    pose.rotation = Q';
    if ~strcmp(form, 'rotation_centre')
      pose.centre = -Q' * s(:);
    end
  end
end

function pose = checked_pose(pose)
  if ~isstruct(pose) || ~isscalar(pose) || ~all(isfield(pose, {'rotation', 'centre'}))
    error('kelvane:pose', 'A pose struct has the fields rotation and centre, as kelvane_pose returns it.');
  end
  pose = struct('rotation', checked_rotation(pose.rotation, 'pose.rotation'), ...
                'centre', checked_vector(pose.centre, 3, 'pose.centre')', 'form', 'pose', 'frame', 'world_from_camera');
end

% The rotation matrix and the three further elements.
function [Q, s] = parts_of(value, form)
  switch form
    case 'matrix4x4'
      [Q, s] = matrix_parts(value, 4);
    case 'matrix3x4'
      [Q, s] = matrix_parts(value, 3);
    case {'rotation_centre', 'rotation_translation'}
      [Q, s] = cell_parts(value, form);
      Q = checked_rotation(Q, 'the rotation');
    case 'rotation_vector'
      value = checked_vector(value, 6, 'the pose');
      Q = rotation_of_vector(value(1:3));
      s = value(4:6);
    case 'axis_angle'
      value = checked_vector(value, 7, 'the pose');
      Q = rotation_of_checked_axis(value(1:3), value(4));
      s = value(5:7);
    case {'quaternion_xyzw', 'quaternion_wxyz'}
      value = checked_vector(value, 7, 'the pose');
      Q = rotation_of_elements(value(1:4), form);
      s = value(5:7);
    case 'opencv'
      [r, s] = cell_parts(value, form);
      Q = rotation_of_vector(checked_vector(r, 3, 'rvec'));
    case 'colmap'
      [q, s] = cell_parts(value, form);
      Q = rotation_of_elements(checked_vector(q, 4, 'qvec'), 'quaternion_wxyz');
    case 'rigidtform3d'
      Q = checked_rotation(property_of(value, 'R', 'rigidtform3d'), 'R of the rigidtform3d');
      s = checked_vector(property_of(value, 'Translation', 'rigidtform3d'), 3, 'its Translation');
  end
end

function [Q, s] = matrix_parts(T, num_rows)
  T = checked_numbers(T, 'the pose');
  if ~isequal(size(T), [num_rows, 4])
    error('kelvane:size', 'The pose must be %d x 4; this is %d x %d.', num_rows, size(T, 1), size(T, 2));
  end
  if num_rows == 4 && ~isequal(T(4, :), [0, 0, 0, 1])
    hint = repmat(' It looks transposed: the translation belongs into the last column.', 1, isequal(T(:, 4), [0; 0; 0; 1]));
    error('kelvane:lastRow', 'The last row of the pose must be 0 0 0 1; this is%s.%s', sprintf(' %g', T(4, :)), hint);
  end
  Q = checked_rotation(T(1:3, 1:3), 'the rotation of the pose');
  s = T(1:3, 4);
end

function [first, s] = cell_parts(value, form)
  if ~iscell(value) || numel(value) ~= 2
    forms = pose_forms();
    error('kelvane:pose', 'A pose of form ''%s'' is %s.', form, forms(strcmp(form, {forms.name})).looks);
  end
  first = value{1};
  s = checked_vector(value{2}, 3, 'the second part of the pose');
end

function Q = rotation_of_elements(q, order)
  if strcmp(order, 'quaternion_wxyz')
    q = q([2, 3, 4, 1]);
  end
  Q = rotation_of_quaternion(checked_quaternion(q));
end

function Q = rotation_of_checked_axis(axis, angle)
  if norm(axis) >= 1e-8
    Q = rotation_of_axis_angle(axis / norm(axis), angle);
  elseif angle == 0
    Q = eye(3);
  else
    error('kelvane:zeroAxis', 'An axis of length %.2g has no direction to turn about by %g.', norm(axis), angle);
  end
end
