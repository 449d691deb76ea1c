% KELVANE_DISTORT  Where a camera with its lens sees ideal pixels or directions.
%
%   pixels = kelvane_distort(ideal, intrinsics)
%   pixels = kelvane_distort(directions, intrinsics)
%   [pixels, num_without] = kelvane_distort(...)
%
%   The way back of kelvane_undistort.
%
%   Inputs:
%     ideal       2 x N or N x 2, pixels of a pinhole camera with the same focal lengths, principal point and skew; 2 x 2
%                 are columns
%     directions  3 x N or N x 3, in the camera frame, of any length but zero; 3 x 3 are columns, 3 x 2 are pixels
%     intrinsics  a camera of kelvane_camera, or anything that it takes as intrinsics
%
%   Outputs:
%     pixels       2 x N. What lies beyond the fold of the lens has none, and is NaN; a direction behind a camera that is no
%                  fisheye has that of the line through it, as in kelvane_project.
%     num_without  how many are NaN
%
%   Example:
%     >> camera = kelvane_camera('OPENCV_FISHEYE', [300 300 320 240, 0.05 -0.01 0 0]);
%     >> [pixels, num_without] = kelvane_distort([0 1 1; 0 0 1; 1 0 -1], camera)
%     pixels =
%        320.00   820.69   788.66
%        240.00   240.00   708.66
%     num_without = 0
%
%
%   See also kelvane_undistort, kelvane_camera, kelvane_project.

% SPDX-License-Identifier: BSD-3-Clause
% From directions through the lens.
function [pixels, num_without] = kelvane_distort(seen, intrinsics)
  if nargin < 2
    error('kelvane:inputs', 'kelvane_distort needs pixels or directions, and intrinsics.');
  end
  [pixels, num_without] = call_engine('distort', seen, plain_object(intrinsics, 'cameraIntrinsics'));
end

%!test  % as kelvane_project, and of ideal pixels as OpenCV's documentation has it
%! camera = kelvane_camera([700 650 320 240], [-0.2 0.1 1e-3 -2e-3 0.02]);
%! points = [0.1 -0.2 0.3 0.5; 0.3 0.1 -0.4 0; 1 1 2 3];
%! expected = kelvane_project(eye(4), points, camera, 'PoseFrame', 'camera_from_world');
%! assert(kelvane_distort(points, camera), expected, 1e-12);
%! a = points(1:2, :) ./ points(3, :);
%! assert(kelvane_distort([700; 650] .* a + [320; 240], camera), expected, 1e-10);
%! r2 = sum(a.^2);
%! radial = 1 - 0.2 * r2 + 0.1 * r2.^2 + 0.02 * r2.^3;
%! x = a(1, :) .* radial + 2 * 1e-3 * prod(a) - 2e-3 * (r2 + 2 * a(1, :).^2);
%! y = a(2, :) .* radial + 1e-3 * (r2 + 2 * a(2, :).^2) - 2 * 2e-3 * prod(a);
%! assert(expected, [700 * x + 320; 650 * y + 240], 1e-10);
%! [pixels, num_without] = kelvane_distort([points, [NaN; 0; 1]]', camera);
%! assert(pixels(:, 1:4), kelvane_distort(points, camera));
%! assert(num_without, 1);
%!error <needs pixels or directions> kelvane_distort(1)
%!error <seen must be 2 x N or N x 2 \(pixels\) or 3 x N or N x 3 \(directions\); this is 4 x 5> kelvane_distort(rand(4, 5), [1 2 3])

%!demo
%! % the corners of ideal images of three sizes, seen through a fisheye lens
%! camera = kelvane_camera('OPENCV_FISHEYE', [300 300 320 240, 0.05 -0.01 0 0]);
%! for size = [100 200 400]
%!   kelvane_distort([320 + size * [-1 1 1 -1]; 240 + size * [-1 -1 1 1]], camera)
%! end
