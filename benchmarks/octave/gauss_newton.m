% SPDX-License-Identifier: BSD-3-Clause
% GAUSS_NEWTON  Refine a camera pose by ten Gauss-Newton steps in plain, vectorised m-code.
%
%   x = gauss_newton(camera, points, pixels)
%
%   camera  1 x 9: rotation vector r, centre t, then f, cx, cy;  points  3 x N;  pixels  2 x N
%   x       1 x 6: the refined [r, t]
%
%   See also pixel_residuals, kelvane_mex.
function x = gauss_newton(camera, points, pixels)
  x = camera(1:6)';
  for i = 1:10
    [residuals, J] = pixel_residuals(x, camera(7:9), points, pixels);
    x = x - J \ residuals;
  end
  x = x';
end
