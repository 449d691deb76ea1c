% SPDX-License-Identifier: BSD-3-Clause
% World points in the camera frame, 3 x n: R' * (X - t).
function p = camera_points(R, t, points)
  p = R' * (points - t(:));
end
