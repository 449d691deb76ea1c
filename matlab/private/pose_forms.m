% SPDX-License-Identifier: BSD-3-Clause
% The forms of a pose that kelvane_pose knows: name, what it looks like, and the frame that it implies, '' for none.
function forms = pose_forms()
  rows = {
    'matrix4x4',            'a 4 x 4 matrix [Q, s; 0 0 0 1]',               ''
    'matrix3x4',            'a 3 x 4 matrix [Q, s]',                        ''
    'rotation_centre',      'a cell {Q, centre}: 3 x 3 and 3 elements',     ''
    'rotation_translation', 'a cell {Q, s}: 3 x 3 and 3 elements',          ''
    'rotation_vector',      'a vector [r, s] of 6 elements',                ''
    'axis_angle',           'a vector [axis, angle, s] of 7 elements',      ''
    'quaternion_xyzw',      'a vector [qx, qy, qz, qw, s] of 7 elements',   ''
    'quaternion_wxyz',      'a vector [qw, qx, qy, qz, s] of 7 elements',   ''
    'opencv',               'a cell {rvec, tvec} of 3 elements each',       'camera_from_world'
    'colmap',               'a cell {qvec, tvec}: 4 (w first) and 3 elements', 'camera_from_world'
    'rigidtform3d',         'an object of MATLAB''s class rigidtform3d',    ''
    'pose',                 'a struct that kelvane_pose returned',          'world_from_camera'};
  forms = cell2struct(rows, {'name', 'looks', 'frame'}, 2)';
end
