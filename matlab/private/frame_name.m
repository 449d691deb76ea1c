% SPDX-License-Identifier: BSD-3-Clause
% The full name of a frame of kelvane_pose, '' for none.
function frame = frame_name(frame)
  if isempty(frame)
    frame = '';
  else
    frame = one_of(frame, {'camera_from_world', 'world_from_camera'}, 'kelvane:frame', 'frame');
  end
end
