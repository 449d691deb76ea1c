% SPDX-License-Identifier: BSD-3-Clause
% A value in a given form and frame of a struct of kelvane_pose.
function value = write_pose(pose, form, frame)
  Q = pose.rotation;
  s = pose.centre;
  if strcmp(frame, 'camera_from_world')
    Q = Q';
    if ~strcmp(form, 'rotation_centre')
      s = -Q * s;
    end
  end
  switch form
    case 'pose'
      value = struct('rotation', pose.rotation, 'centre', pose.centre, 'form', form, 'frame', frame);
    case 'matrix4x4'
      value = [Q, s; 0, 0, 0, 1];
    case 'matrix3x4'
      value = [Q, s];
    case {'rotation_centre', 'rotation_translation'}
      value = {Q, s};
    case 'quaternion_wxyz'
      q = quaternion_of_rotation(Q);
      value = [q([4, 1, 2, 3]), s'];
    case 'opencv'
      value = {vector_of_rotation(Q)', s};
    case 'colmap'
      q = quaternion_of_rotation(Q);
      value = {q([4, 1, 2, 3]), s'};
    case 'rigidtform3d'
      if ~exist('rigidtform3d', 'class') && ~exist('rigidtform3d', 'file')
        error('kelvane:noClass', 'This release has no class rigidtform3d. Ask for the form ''matrix4x4'' instead.');
      end
      value = feval('rigidtform3d', Q, s');
    otherwise
      value = [rotation_entries(form, Q), s'];
  end
end
