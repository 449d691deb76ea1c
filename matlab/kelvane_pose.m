% KELVANE_POSE  Convert camera poses between forms and frames.
%
%   pose = kelvane_pose(value, form, frame)
%   value = kelvane_pose(pose, form, frame)
%   value = kelvane_pose(value, form, frame, new_form, new_frame)
%
%   The first call reads a pose into a struct, the second writes the struct in another form, the third does both.
%
%   Every form but one is a rotation Q and a vector s that map one frame into the other, and the frame says which way:
%     'camera_from_world'   p = Q * X + s: what computer vision mostly calls the extrinsics; s is not the centre
%     'world_from_camera'   X = Q * p + s: the pose of the camera in the world; s is its centre
%   X is a point in world coordinates, p the same in camera coordinates: x to the right, y down, z forward. The unit of s
%   is that of the world. Angles are in radians.
%
%   form                    value, row or column where it is a vector
%     'matrix4x4'             [Q, s; 0 0 0 1]
%     'matrix3x4'             [Q, s]
%     'rotation_centre'       {Q, centre}: the camera centre in the world, in both frames
%     'rotation_translation'  {Q, s}
%     'rotation_vector'       [r, s], 1 x 6: unit axis times angle
%     'axis_angle'            [axis, angle, s], 1 x 7: an axis of any length but zero
%     'quaternion_xyzw'       [qx, qy, qz, qw, s], 1 x 7: scalar last, any length but zero
%     'quaternion_wxyz'       [qw, qx, qy, qz, s], 1 x 7: scalar first
%     'opencv'                {rvec, tvec}, 3 x 1 each: always 'camera_from_world', the frame may be left out
%     'colmap'                {qvec, tvec}, 1 x 4 with the scalar first and 1 x 3: always 'camera_from_world'
%     'rigidtform3d'          object of MATLAB's class, where the release has it
%     'pose'                  the struct below, always 'world_from_camera'
%   The search vectors of kelvane_mex are 'rotation_vector', 'axis_angle' and 'quaternion_xyzw', 'world_from_camera'.
%
%   pose is a struct with the fields
%     rotation   3 x 3, world_from_camera
%     centre     3 x 1, camera centre in the world
%     form       the form that it was read from, with
%     frame      its frame
%
%   A matrix must be orthogonal to 1e-5, which six printed digits are, and right-handed; the nearest rotation is taken.
%   Rotation vectors come out with a length of at most pi, angles between 0 and pi, quaternions of unit length with a
%   scalar of 0 or more.
%
%   Example:
%     >> T = [0 -1 0 3; 1 0 0 1; 0 0 1 2; 0 0 0 1];
%     >> pose = kelvane_pose(T, 'matrix4x4', 'camera_from_world');
%     >> pose.centre
%     ans =
%       -1
%        3
%       -2
%     >> parts = kelvane_pose(pose, 'colmap');
%     >> qvec = parts{1}
%     qvec =
%        0.7071        0        0   0.7071
%     >> tvec = parts{2}
%     tvec =
%        3   1   2
%
%
%   See also kelvane_refine, kelvane_project, kelvane_types.

% SPDX-License-Identifier: BSD-3-Clause
% The one converter of poses.
function result = kelvane_pose(value, form, frame, new_form, new_frame)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_pose needs a pose, its form and its frame.');
  end
  if nargin < 2
    form = '';
  end
  if nargin < 3
    frame = '';
  end
  if nargin < 4
    new_form = '';
  end
  if nargin < 5
    new_frame = '';
  end
  if nargin <= 3 && isstruct(value) && isfield(value, 'centre')
    new_form = form;
    new_frame = frame;
    form = 'pose';
    frame = '';
  end
  new_form = form_name(new_form);
  [value, form] = plain_pose(value, form_name(form));
  result = call_engine('pose', value, form, frame_name(frame), new_form, frame_name(new_frame));
  result = written_pose(result, new_form);
end

%!function R = turn(axis, angle)
%!  S = [0, -axis(3), axis(2); axis(3), 0, -axis(1); -axis(2), axis(1), 0] / norm(axis);
%!  R = expm(angle * S);
%!endfunction

%!function forms = all_forms()
%!  forms = {'matrix4x4', 'matrix3x4', 'rotation_centre', 'rotation_translation', 'rotation_vector', 'axis_angle', ...
%!           'quaternion_xyzw', 'quaternion_wxyz', 'opencv', 'colmap'};
%!endfunction

%!test  % there and back in every form and frame, at every size of angle
%! frames = {'camera_from_world', 'world_from_camera'};
%! axes = [0 -1 0; 1 2 -3; -3 1 1; 1e-9 1 -1e-9]';
%! for angle = [0, 1e-12, 0.3, 2, pi - 1e-9, pi]
%!   for axis = axes
%!     R = turn(axis, angle);
%!     pose = kelvane_pose({R, [1; -2; 3]}, 'rotation_centre', 'world_from_camera');
%!     for form = all_forms()
%!       for f = 1:2 - any(strcmp(form{1}, {'opencv', 'colmap'}))  % those two have one frame
%!         value = kelvane_pose(pose, form{1}, frames{f});
%!         back = kelvane_pose(value, form{1}, frames{f});
%!         assert(back.rotation, R, 1e-14);
%!         assert(back.centre, [1; -2; 3], 1e-14);
%!         assert({back.form, back.frame}, {form{1}, frames{f}});
%!       end
%!     end
%!   end
%! end

%!test  % what each form means, on one pose that is told by hand: x_camera = y_world, y_camera = -x_world
%! T = [0 1 0 5; -1 0 0 6; 0 0 1 7; 0 0 0 1];
%! pose = kelvane_pose(T, 'matrix4x4', 'camera_from_world');
%! assert(pose.rotation, T(1:3, 1:3)', eps);
%! assert(pose.centre, [6; -5; -7], 8 * eps);
%! write = @(varargin) kelvane_pose(pose, varargin{:});
%! h = sqrt(0.5);
%! assert(write('matrix3x4', 'camera_from_world'), T(1:3, :), 8 * eps);
%! assert(write('matrix4x4', 'world_from_camera'), [0 -1 0 6; 1 0 0 -5; 0 0 1 -7; 0 0 0 1], 8 * eps);
%! assert(write('rotation_vector', 'camera_from_world'), [0 0 -pi/2 5 6 7], 8 * eps);
%! assert(write('axis_angle', 'world_from_camera'), [0 0 1 pi/2 6 -5 -7], 8 * eps);
%! assert(write('quaternion_xyzw', 'world_from_camera'), [0 0 h h 6 -5 -7], 8 * eps);
%! assert(write('quaternion_wxyz', 'camera_from_world'), [h 0 0 -h 5 6 7], 8 * eps);
%! assert(write('opencv'), {[0; 0; -pi/2], [5; 6; 7]}, 8 * eps);
%! assert(write('colmap'), {[h 0 0 -h], [5 6 7]}, 8 * eps);
%! assert(write('rotation_centre', 'camera_from_world'), {T(1:3, 1:3), [6; -5; -7]}, 8 * eps);
%! assert(write('rotation_translation', 'camera_from_world'), {T(1:3, 1:3), [5; 6; 7]}, 8 * eps);

%!test  % six printed digits of a matrix are enough, and the nearest rotation is taken; four are not
%! R = turn([1 2 -3], 0.7);
%! printed = @(digits) [round(R * 10^digits) / 10^digits, [1; 2; 3]];
%! pose = kelvane_pose(printed(6), 'matrix3x4', 'world_from_camera');
%! assert(pose.rotation' * pose.rotation, eye(3), 4 * eps);
%! assert(pose.rotation, R, 1e-6);
%! fail('kelvane_pose(printed(4), ''matrix3x4'', ''world_from_camera'')', 'is not a rotation');
%!test  % five inputs convert at once, and classes other than double are taken
%! value = kelvane_pose(single([0 0 0 1 2 3]), 'rotation_vector', 'world_from_camera', 'opencv');
%! assert(value, {[0; 0; 0], [-1; -2; -3]});
%! assert(class(value{2}), 'double');

%!test  % an object that has the properties of MATLAB's is read; here a struct stands for it
%! object = struct('R', [0 -1 0; 1 0 0; 0 0 1], 'Translation', [1 2 3]);
%! pose = kelvane_pose(object, 'rigidtform3d', 'world_from_camera');
%! assert({pose.rotation, pose.centre}, {object.R, [1; 2; 3]}, eps);

%!error <R' \* R differs from the identity by 3> kelvane_pose([2*eye(3), [1;2;3]], 'matrix3x4', 'camera_from_world')
%!error <it mirrors> kelvane_pose([diag([1 1 -1]), [1;2;3]], 'matrix3x4', 'camera_from_world')
%!error <quaternion of length 0> kelvane_pose(zeros(1, 7), 'quaternion_xyzw', 'world_from_camera')
%!error <axis of length 0> kelvane_pose([0 0 0 1 0 0 0], 'axis_angle', 'world_from_camera')
%!error <the pose\(1, 5\) is NaN> kelvane_pose([0 0 0 1 NaN 0], 'rotation_vector', 'world_from_camera')
%!error <needs a pose, its form and its frame> kelvane_pose()
%!error <Say which way the pose of form 'matrix4x4' maps> kelvane_pose(eye(4), 'matrix4x4')
%!error <always 'camera_from_world'> kelvane_pose({[0 0 0], [0 0 0]}, 'opencv', 'world_from_camera')
%!error <It looks transposed> kelvane_pose([eye(3), [0;0;0]; 1 2 3 1], 'matrix4x4', 'camera_from_world')
%!error <Did you mean 'colmap'> kelvane_pose({[1 0 0 0], [0 0 0]}, 'kolmap')
%!error <'foo' is not a form of a pose. There are 'matrix4x4', > kelvane_pose(eye(4), 'foo')
%!error <'tform' is not a form of a pose. There are> kelvane_pose(eye(4), 'tform')
%!error <Did you mean 'quaternion_xyzw'> kelvane_pose(eye(4), 'quaternion_xyw')
%!error <'up' is not a frame. There are> kelvane_pose(eye(4), 'matrix4x4', 'up')
%!error <Did you mean 'world_from_camera'> kelvane_pose(eye(4), 'matrix4x4', 'world')
%!error <Seven numbers can be> kelvane_pose([0 0 0 1 0 0 0])
%!error <must be a vector of 6 elements; this is 1 x 5> kelvane_pose(1:5, 'rotation_vector', 'world_from_camera')
%!error <must be real> kelvane_pose([1i 0 0 1 2 3], 'rotation_vector', 'world_from_camera')

%!demo
%! % one pose as the files of COLMAP, OpenCV and a robot have it
%! pose = kelvane_pose([0.3 -0.5 0.2, 1.8 -0.2 -3.6], 'rotation_vector', 'world_from_camera');
%! colmap = kelvane_pose(pose, 'colmap')
%! opencv = kelvane_pose(pose, 'opencv')
%! matrix = kelvane_pose(pose, 'matrix4x4', 'world_from_camera')
