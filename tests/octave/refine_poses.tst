% SPDX-License-Identifier: BSD-3-Clause
% Poses, worlds and cameras of kelvane_refine in every form: the result is always the same.

%!function forms = all_forms()
%!  forms = {'matrix4x4', 'matrix3x4', 'rotation_centre', 'rotation_translation', 'rotation_vector', 'axis_angle', ...
%!           'quaternion_xyzw', 'quaternion_wxyz', 'opencv', 'colmap', 'pose', 'rigidtform3d'};
%!endfunction

%!function frames = frames_of(form)
%!  frames = {'camera_from_world', 'world_from_camera'};
%!  if any(strcmp(form, {'opencv', 'colmap'}))
%!    frames = frames(1);
%!  elseif strcmp(form, 'pose')
%!    frames = frames(2);
%!  end
%!endfunction

%!test  % the pose comes out in the form and the frame in which it went in, or in those that are asked for
%! cleanup = stand_in('');
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 21);
%! call = @(start, varargin) kelvane_refine(start, scene.points, scene.pixels, scene.K, varargin{:});
%! best = call(scene.start);
%! assert(isfield(best, {'rotation', 'centre'}), [true, true]);
%! for form = all_forms()
%!   for frame = frames_of(form{1})
%!     start = kelvane_pose(scene.start, form{1}, frame{1});
%!     pose = call(start, 'PoseForm', form{1}, 'PoseFrame', frame{1});
%!     assert(class(pose), class(start));
%!     assert(size(pose), size(start));
%!     back = kelvane_pose(pose, form{1}, frame{1});
%!     if strcmp(form{1}, 'pose')
%!       back = pose;
%!     end
%!     assert({back.rotation, back.centre}, {best.rotation, best.centre}, 1e-9);
%!     turned_over = call(start, 'PoseForm', form{1}, 'PoseFrame', frame{1}, 'OutputForm', 'opencv');
%!     assert(turned_over, kelvane_pose(best, 'opencv'), 1e-9);
%!     other = call(scene.start, 'OutputForm', form{1}, 'OutputFrame', frame{1});
%!     assert(class(other), class(start));
%!   end
%! end

%!test  % a start that cannot be improved comes back to the last bit
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 22);
%! start = kelvane_pose(scene.start, 'quaternion_wxyz', 'camera_from_world') .* [3 3 3 3 1 1 1];
%! pose = kelvane_refine(start, scene.points, scene.pixels, scene.K, 'MaxIterations', 0, 'PoseForm', 'quaternion_wxyz', ...
%!                       'PoseFrame', 'camera_from_world');
%! assert(pose, start);
%! scene.points(:, 1) = scene.start.centre + 2 * scene.start.rotation(:, 1);  % beside the camera: no finite pixel
%! [pose, info] = kelvane_refine(start, scene.points, scene.pixels, scene.K, 'PoseForm', 'quaternion_wxyz', ...
%!                               'PoseFrame', 'camera_from_world');
%! assert(info.exitflag, -3);
%! assert(pose, start);

%!test  % where the world is, how it is turned and how large it is makes no difference
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 23);
%! Q = expm([0 -1 2; 1 0 -0.5; -2 0.5 0]);
%! moved = @(X) 250 * (Q * X) + [3e5; -7e5; 4e4];
%! for loss = {'none', 'huber'}
%!   [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, 'Loss', loss{1});
%!   start = kelvane_pose({Q * scene.start.rotation, moved(scene.start.centre)}, 'rotation_centre', 'world_from_camera');
%!   [other, info2] = kelvane_refine(start, moved(scene.points), scene.pixels, scene.K, 'Loss', loss{1});
%!   back = kelvane_pose({Q * pose.rotation, moved(pose.centre)}, 'rotation_centre', 'world_from_camera');
%!   assert(other.rotation, back.rotation, 1e-9);
%!   assert(other.centre, back.centre, 250 * 4 * 1e-8);
%!   assert(info2.iterations, info.iterations);
%! end

%!test  % a start without rotation, or with half a turn, is one like any other
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! for R = {eye(3), diag([1 -1 -1]), diag([-1 -1 1])}
%!   truth = kelvane_pose({R{1} * expm([0 -0.05 0.1; 0.05 0 -0.2; -0.1 0.2 0]), -4 * R{1}(:, 3)}, 'rotation_centre', ...
%!                        'world_from_camera');
%!   start = kelvane_pose(kelvane_pose({R{1}, -4 * R{1}(:, 3)}, 'rotation_centre', 'world_from_camera'), 'pose', '');
%!   pixels = kelvane_project(truth, points, [500 0 0]);
%!   pose = kelvane_refine(start, points, pixels, [500 0 0]);
%!   assert(pose.rotation, truth.rotation, 1e-9);
%! end

%!test  % directions in rows or columns, and cameras in a row or as a matrix
%! scene = noisy_scene([700 0 320; 0 650 240; 0 0 1], 25);
%! call = @(varargin) kelvane_refine(scene.start, scene.points, varargin{:});
%! directions = [scene.K \ [scene.pixels; ones(1, 30)]];
%! assert(isequal(call(directions', []), call(directions, [])));
%! assert(isequal(call(scene.pixels, [700 650 320 240]), call(scene.pixels, scene.K)));
%! assert(isequal(call(scene.pixels', [700; 320; 240]), call(scene.pixels, [700 0 320; 0 700 240; 0 0 1])));

%!test  % MATLAB's objects, by stand-ins with their properties
%! cleanup = stand_in('');
%! scene = noisy_scene([700 20 320; 0 650 240; 0 0 1], 24);
%! best = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K);
%! object = cameraIntrinsics([700 650], [320 240], 20);
%! start = kelvane_pose(scene.start, 'rigidtform3d', 'world_from_camera');
%! pose = kelvane_refine(start, scene.points, scene.pixels, object, 'PoseFrame', 'world_from_camera');
%! assert(class(pose), 'rigidtform3d');
%! assert({pose.R, pose.Translation}, {best.rotation, best.centre'}, 1e-9);
%! object.RadialDistortion = [0 0.1];
%! pixels = kelvane_distort(scene.pixels, object);
%! [pose, info] = kelvane_refine(scene.start, scene.points, pixels, object);
%! assert({pose.rotation, pose.centre}, {best.rotation, best.centre}, 1e-2);
%! camera = kelvane_camera(scene.K, [0 0.1 0 0]);
%! assert(isequal(kelvane_refine(scene.start, scene.points, pixels, camera), pose));
%! assert(info.intrinsics.model, 'GENERAL_PERSPECTIVE');
%! assert(info.residuals, pixels - kelvane_project(pose, scene.points, camera), 1e-9);
%! message = message_of(@() kelvane_refine(scene.start, scene.points, pixels, fisheyeIntrinsics()));
%! assert(strncmp(message, 'A fisheyeIntrinsics maps by a polynomial of its own', 51), message);

%!test  % without the class there is a way out
%! fail('kelvane_pose(eye(4), ''matrix4x4'', ''world_from_camera'', ''rigidtform3d'', ''world_from_camera'')', 'matrix4x4');
