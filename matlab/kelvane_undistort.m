% KELVANE_UNDISTORT  Remove the lens from pixels: ideal pixels, or directions.
%
%   Where a camera without its lens would see what is at some pixels, or in which directions it lies.
%
%   ideal = kelvane_undistort(pixels, intrinsics)
%   directions = kelvane_undistort(pixels, intrinsics, 'directions')
%   [..., num_without] = kelvane_undistort(...)
%
%   Inputs:
%     pixels      2 x N or N x 2, (u, v); 2 x 2 are columns
%     intrinsics  a camera of kelvane_camera, or anything that it takes as intrinsics
%
%   Outputs:
%     ideal        2 x N, pixels of a pinhole camera with the same focal lengths, principal point and skew. What lies 90
%                  degrees or more off the axis of a fisheye has none: take directions.
%     directions   3 x N, of unit length, in the camera frame
%     num_without  how many are NaN: not seen (NaN on the way in), beyond where the lens folds back, or without an ideal
%                  pixel. Without this output a warning tells of them.
%
%   Every answer leads back to its pixel, to 1e-10 px.
%
%   Example:
%     >> camera = kelvane_camera('RADIAL', [800 320 240, -0.3 0.1]);
%     >> ideal = kelvane_undistort([320 600; 240 100], camera)
%     ideal =
%        320.000   614.060
%        240.000    92.970
%     >> fprintf('(%.3f, %.3f)\n', kelvane_distort(ideal, camera))
%     (320.000, 240.000)
%     (600.000, 100.000)
%
%
%   See also kelvane_distort, kelvane_camera, kelvane_project.

% SPDX-License-Identifier: BSD-3-Clause
% From pixels back through the lens.
function [seen, num_without] = kelvane_undistort(pixels, intrinsics, to)
  if nargin < 2
    error('kelvane:inputs', 'kelvane_undistort needs pixels and intrinsics.');
  end
  if nargin < 3
    to = 'pixels';
  end
  to = one_of(to, {'pixels', 'directions'}, 'kelvane:option', 'output of kelvane_undistort');
  [seen, num_without] = call_engine('undistort', pixels, plain_object(intrinsics, 'cameraIntrinsics'), to);
  if num_without > 0 && nargout < 2
    warning('kelvane:noRay', '%d of %d pixels have no ray through this lens that %s can tell: NaN.', ...
            num_without, size(seen, 2), to);
  end
end

%!test  % there and back through every kind of lens
%! cameras = {kelvane_camera('FULL_OPENCV', [700 650 320 240, -0.2 0.1 1e-3 -2e-3 0.01 0.02 0.01 0.003]), ...
%!            kelvane_camera('THIN_PRISM_FISHEYE', [300 310 320 240, 0.05 -0.01 1e-3 2e-3 1e-3 -1e-4 1e-3 -2e-3]), ...
%!            kelvane_camera('FOV', [400 410 320 240 0.9]), kelvane_camera('BAL', [500 -0.1 0.01]), [700 320 240]};
%! [u, v] = meshgrid(0:40:640, 0:40:480);
%! for camera = cameras
%!   pixels = [u(:), v(:)]' - 300 * (isstruct(camera{1}) && strcmp(camera{1}.model, 'BAL'));
%!   [directions, num_without] = kelvane_undistort(pixels, camera{1}, 'directions');
%!   assert(num_without, 0);
%!   assert(sum(directions.^2), ones(1, columns(pixels)), 1e-14);
%!   assert(kelvane_distort(directions, camera{1}), pixels, 1e-9);
%!   ideal = kelvane_undistort(pixels', camera{1});
%!   assert(kelvane_distort(ideal, camera{1}), pixels, 1e-9);
%! end

%!test  % an ideal pixel is that of the pinhole camera
%! camera = kelvane_camera([700 3 320; 0 650 240; 0 0 1], [-0.2 0.1 1e-3 -2e-3]);
%! K = kelvane_camera(camera, 'opencv');
%! directions = [0.1 -0.2 0; 0.3 0.1 0.4; 1 1 1];
%! pixels = kelvane_distort(directions, camera);
%! assert(kelvane_undistort(pixels, camera), (K * directions)(1:2, :), 1e-9);

%!test  % what has no ray is NaN, counted, and told where nobody asks for the count
%! camera = kelvane_camera('SIMPLE_RADIAL', [300 320 240 -1/3]);
%! pixels = [320 519 521 NaN 320; 240 240 240 1 Inf];
%! [ideal, num_without] = kelvane_undistort(pixels, camera);
%! assert(num_without, 3);
%! assert(isnan(ideal), logical([0 0 1 1 1; 0 0 1 1 1]));
%! fisheye = kelvane_camera('OPENCV_FISHEYE', [100 100 0 0 0 0 0 0]);
%! [ideal, num_without] = kelvane_undistort([100 200; 0 0], fisheye);
%! assert(num_without, 1);
%! assert(kelvane_undistort([200; 0], fisheye, 'directions'), [sin(2); 0; cos(2)], 1e-15);
%! assert(size(kelvane_undistort(zeros(2, 0), camera)), [2 0]);
%!warning <2 of 3 pixels have no ray through this lens that directions can tell> kelvane_undistort([5 0 9; 0 9 NaN], kelvane_camera('SIMPLE_RADIAL', [10 0 0 -1/3]), 'directions');
%!error <needs pixels and intrinsics> kelvane_undistort(1)
%!error <pixels must be 2 x N or N x 2 \(pixels\); this is 3 x 5> kelvane_undistort(rand(3, 5), [1 2 3])
%!error <Did you mean 'directions'> kelvane_undistort([1; 2], [1 2 3], 'direction')
%!error <\[\] stands for directions> kelvane_undistort([1; 2], [])

%!demo
%! % measured pixels as ideal ones, and as directions
%! camera = kelvane_camera('RADIAL', [800 320 240, -0.3 0.1]);
%! ideal = kelvane_undistort([320 600; 240 100], camera)
%! directions = kelvane_undistort([320 600; 240 100], camera, 'directions')
