% PREDICTED_PIXELS  The pixels at which a camera sees the points of a view.
%
%   pixels = predicted_pixels(view, type, x)
%
%   view is a struct with the fields points (3 x N) and intrinsics ([k11, k13, k23]), as chessboard_view returns it;
%   x = [r, t] is a pose of one of the pixel types (0 to 3 and -1 to -3), as kelvane_mex returns it. pixels is 2 x N, (u; v).
%
%   Example
%     view = chessboard_view(1);
%     difference = predicted_pixels(view, 0, view.start{1}) - view.pixels;
%
%   See also kelvane_mex, chessboard_view.

% SPDX-License-Identifier: BSD-3-Clause
% The camera model in a few lines.
function pixels = predicted_pixels(view, type, x)
  r = x(1:end - 3);
  t = x(end - 2:end)';
  p = rotation_matrix(representation_of(type), r)' * (view.points - repmat(t, 1, size(view.points, 2)));
  k = view.intrinsics;
  pixels = [k(1) * p(1, :) ./ p(3, :) + k(2); k(1) * p(2, :) ./ p(3, :) + k(3)];
end

% Camera to world.
function R = rotation_matrix(representation, r)
  if representation == 1
    R = expm(cross_matrix(r));
  elseif representation == 2
    R = expm(r(4) * cross_matrix(r(1:3) / norm(r(1:3))));
  else
    q = r / norm(r);
    R = eye(3) + 2 * q(4) * cross_matrix(q(1:3)) + 2 * cross_matrix(q(1:3))^2;
  end
end

function S = cross_matrix(v)
  S = [0, -v(3), v(2); v(3), 0, -v(1); -v(2), v(1), 0];
end
