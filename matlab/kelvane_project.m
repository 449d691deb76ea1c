% KELVANE_PROJECT  Where a camera sees points, and how that changes with its pose.
%
%   seen = kelvane_project(pose, points, intrinsics)
%   seen = kelvane_project(pose, points, intrinsics, name, value, ...)
%   [seen, J, depth] = kelvane_project(...)
%
%   Inputs:
%     pose        struct of kelvane_pose, or any of its forms, named by 'PoseForm' and 'PoseFrame'
%     points      3 x N or N x 3 world points; 3 x 3 are columns
%     intrinsics  a camera of kelvane_camera, with its lens; or [f cx cy], [fx fy cx cy], 3 x 3 K, MATLAB's cameraIntrinsics
%                 or cameraParameters; [] for unit bearing vectors
%
%   Options:
%     'PoseForm'   form of the pose, needed where its size leaves a doubt
%     'PoseFrame'  'camera_from_world' or 'world_from_camera', needed where the form implies none
%
%   Outputs:
%     seen   2 x N pixels (u; v), or 3 x N unit directions in the camera frame. A point behind the camera has a pixel too:
%            where the line through it and the centre meets the image. In the plane of the centre, or too near to it for
%            its depth to be more than rounding, it is NaN. So is the direction of a point at the centre, and the pixel of one
%            beyond where a lens folds back. A fisheye sees behind itself, too.
%     J      2 N x 6 or 3 N x 6: derivatives of seen(:) by [w; dt], w a rotation vector in the camera frame (radians;
%            world_from_camera becomes R * expm of the cross matrix of w) and dt a shift of the centre (world unit)
%     depth  1 x N, along the optical axis, world unit; negative behind the camera
%
%   Example:
%     >> pose = kelvane_pose({[0; 0; 0], [0; 0; 5]}, 'opencv');
%     >> [pixels, J, depth] = kelvane_project(pose, [0 1; 0 2; 0 5], [800 320 240]);
%     >> pixels
%     pixels =
%        320   400
%        240   400
%     >> depth
%     depth =
%         5   10
%     >> size(J)
%     ans =
%        4   6
%
%
%   See also kelvane_camera, kelvane_refine, kelvane_pose, kelvane_check_gradient.

% SPDX-License-Identifier: BSD-3-Clause
% The prediction of pixels and bearings with its derivative.
function [seen, J, depth] = kelvane_project(pose, points, intrinsics, varargin)
  if nargin < 3
    error('kelvane:inputs', 'kelvane_project needs pose, points and intrinsics ([] for bearing vectors).');
  end
  options = parse_options('kelvane_project', struct('PoseForm', '', 'PoseFrame', ''), varargin);
  options.PoseFrame = frame_name(options.PoseFrame);
  [pose, options.PoseForm] = plain_pose(pose, form_name(options.PoseForm));
  inputs = {'project', pose, points, plain_object(intrinsics, 'cameraIntrinsics'), options};
  if nargout > 1
    [seen, J, depth] = call_engine(inputs{:});
  else
    seen = call_engine(inputs{:});
  end
end

%!function pose = some_pose()
%!  pose = kelvane_pose([0.4 -0.9 0.3, 0.2 -0.1 -4], 'rotation_vector', 'world_from_camera');
%!endfunction

%!function K = some_matrix()
%!  K = [700 12 300; 0 650 250; 0 0 1];
%!endfunction

%!test  % the prediction is K * R' * (X - t), divided
%! pose = some_pose();
%! points = [1 2 3; -2 0 1; 0.5 0.1 -1; 3 1 2]';
%! q = some_matrix() * pose.rotation' * (points - pose.centre);
%! [pixels, ~, depth] = kelvane_project(pose, points, some_matrix());
%! assert(pixels, q(1:2, :) ./ q(3, :), -1e-12);
%! assert(depth, q(3, :), 1e-14);
%! assert(kelvane_project(pose, points', -2 * some_matrix()), pixels, -1e-12);
%! K = [700 0 300; 0 650 250; 0 0 1];
%! assert(kelvane_project(pose, points, [700 650 300 250]), kelvane_project(pose, points, K));
%! bearings = kelvane_project(pose, points, []);
%! p = some_matrix() \ q;
%! assert(bearings, p ./ sqrt(sum(p.^2)), 1e-14);

%!test  % the derivative is that of a fourth-order stencil, for pixels with skew and for bearings
%! pose = some_pose();
%! points = [1 2 3; -2 0 1; 0.5 0.1 -1; 3 1 2; -1 -1 -9]';
%! h = 3e-4;
%! lens = kelvane_camera(some_matrix(), [-0.1 0.01 1e-3 -2e-3 1e-3]);
%! fisheye = kelvane_camera('THIN_PRISM_FISHEYE', [500 510 1 2 1e-2 -1e-3 1e-3 2e-3 1e-4 0 1e-3 -1e-3]);
%! for intrinsics = {some_matrix(), [500 1 2], [], lens, fisheye, kelvane_camera('BAL', [500 -0.05 0.01])}
%!   [seen, J] = kelvane_project(pose, points, intrinsics{1});
%!   for k = 1:6
%!     difference = 0;
%!     for step = [-2, -1, 1, 2; 1/12, -2/3, 2/3, -1/12]
%!       m = zeros(6, 1);
%!       m(k) = step(1) * h;
%!       S = [0, -m(3), m(2); m(3), 0, -m(1); -m(2), m(1), 0];
%!       moved = {pose.rotation * expm(S), pose.centre + m(4:6)};
%!       moved = kelvane_pose(moved, 'rotation_centre', 'world_from_camera');
%!       difference = difference + step(2) / h * kelvane_project(moved, points, intrinsics{1});
%!     end
%!     assert(J(:, k), difference(:), 1e-8 * max(abs(J(:))));
%!   end
%! end

%!test  % a K with its focal lengths in MATLAB's object; a struct with the same fields stands for it
%! object = struct('FocalLength', [700 650], 'PrincipalPoint', [300 250], 'Skew', 12, 'RadialDistortion', [0 0], ...
%!                 'TangentialDistortion', [0 0]);
%! points = [1 2 3; -2 0 1]';
%! assert(kelvane_project(some_pose(), points, object), kelvane_project(some_pose(), points, some_matrix()), -1e-12);
%! object.RadialDistortion = [0.1 0];
%! lens = kelvane_camera(some_matrix(), [0.1 0 0 0]);
%! assert(kelvane_project(some_pose(), points, object), kelvane_project(some_pose(), points, lens));
%! object.RadialDistortion = [0 0];
%! object.TangentialDistortion = [0 0.1];
%! lens = kelvane_camera(some_matrix(), [0 0 0 0.1]);
%! assert(kelvane_project(some_pose(), points, object), kelvane_project(some_pose(), points, lens));

%!test  % BAL's camera sees what lies along -z, with y up; a point beyond a fold has neither pixel nor derivative
%! pose = kelvane_pose(eye(4), 'matrix4x4', 'camera_from_world');
%! [pixel, ~, depth] = kelvane_project(pose, [1; 2; -4], kelvane_camera('BAL', [100 0.1 0]));
%! assert(pixel, 100 * (1 + 0.1 * 5 / 16) * [1; 2] / 4, 1e-12);
%! assert(depth, 4);
%! [pixel, J] = kelvane_project(pose, [2 0.1; 0 0; 1 1], kelvane_camera('SIMPLE_RADIAL', [100 0 0 -1/3]));
%! assert(isnan(pixel), logical([1 0; 1 0]));
%! assert(isnan(J), repmat(logical([1; 1; 0; 0]), 1, 6));

%!test  % a point behind the camera has a negative depth and the pixel of the line through it and the centre
%! pose = kelvane_pose(eye(4), 'matrix4x4', 'camera_from_world');
%! [pixels, ~, depth] = kelvane_project(pose, [1 -1; 2 -2; 4 -4], [100 10 20]);
%! assert(pixels, [35 35; 70 70], 1e-12);
%! assert(depth, [4 -4]);
%!error <needs pose, points and intrinsics> kelvane_project(eye(4))
%!error <points must be 3 x N or N x 3; this is 2 x 6> kelvane_project(some_pose(), rand(2, 6), [1 0 0])
%!error <K looks transposed> kelvane_project(some_pose(), [1;2;3], some_matrix()')
%!error <upper triangular> kelvane_project(some_pose(), [1;2;3], ones(3))
%!error <focal length of 0> kelvane_project(some_pose(), [1;2;3], [0 1 2])
%!error <this is 1 x 5> kelvane_project(some_pose(), [1;2;3], 1:5)
%!error <struct has no FocalLength> kelvane_project(some_pose(), [1;2;3], struct('f', 1))
%!error <points\(2, 1\) is NaN> kelvane_project(some_pose(), [1;NaN;3], [1 0 0])
%!error <'Frame' is not an option of kelvane_project. Did you mean 'PoseFrame'> kelvane_project(eye(4), [1;2;3], [], 'Frame', 'x')

%!demo
%! % the corners of a cube, seen from a turned camera
%! [x, y, z] = ndgrid([-1 1]);
%! corners = [x(:), y(:), z(:)]';
%! pose = kelvane_pose([0.3 -0.5 0.2, 1.8 -0.2 -3.6], 'rotation_vector', 'world_from_camera');
%! pixels = kelvane_project(pose, corners, [500 320 240]);
%! plot(pixels(1, [1 2 4 3 1 5 6 8 7 5]), pixels(2, [1 2 4 3 1 5 6 8 7 5]), '-o')
%! axis('equal'), axis('ij'), xlabel('u (pixels)'), ylabel('v (pixels)'), legend('two faces of a cube')
