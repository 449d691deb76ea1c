% SPDX-License-Identifier: BSD-3-Clause
% Full names of a pose's form and frame, the frame being left out where the form implies it.
function [form, frame] = form_and_frame(form, frame)
  forms = pose_forms();
  form = one_of(form, {forms.name}, 'kelvane:poseForm', 'form of a pose');
  implied = implied_frame(form);
  if isempty(frame)
    frame = implied;
  end
  if isempty(frame)
    error('kelvane:noFrame', ['Say which way the pose of form ''%s'' maps: ''camera_from_world'' (p = Q * X + s) ' ...
          'or ''world_from_camera'' (X = Q * p + s), as ''PoseFrame'' or third input of kelvane_pose.'], form);
  end
  frame = one_of(frame, {'camera_from_world', 'world_from_camera'}, 'kelvane:frame', 'frame');
  if ~isempty(implied) && ~strcmp(frame, implied)
    error('kelvane:frame', 'A pose of form ''%s'' is always ''%s''.', form, implied);
  end
end
