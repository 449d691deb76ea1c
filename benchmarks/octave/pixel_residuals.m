% SPDX-License-Identifier: BSD-3-Clause
% PIXEL_RESIDUALS  Differences between predicted and seen pixels, with their Jacobian.
%
%   [residuals, J] = pixel_residuals(x, intrinsics, points, pixels)
%
%   x           6 x 1: rotation vector r (camera to world), centre t;  intrinsics  [f, cx, cy]
%   residuals   2N x 1: u of all points, then v of all points;  J  2N x 6
%
%   With p = exp(-[r]x) (X - t), a = p1 / p3 and b = p2 / p3:  dp/dr = [p]x L(-r), L the left Jacobian, and dp/dt = -R'.
%
%   See also gauss_newton, kelvane_mex.
function [residuals, J] = pixel_residuals(x, intrinsics, points, pixels)
  f = intrinsics(1);
  [Rt, L] = rotation_and_left_jacobian(-x(1:3));
  p = Rt * (points - x(4:6));
  a = (p(1, :) ./ p(3, :))';
  b = (p(2, :) ./ p(3, :))';
  residuals = [f * a + intrinsics(2) - pixels(1, :)'; f * b + intrinsics(3) - pixels(2, :)'];
  if nargout < 2
    return;
  end
  scale = (f ./ p(3, :))';
  zero = zeros(size(a));
  by_turn = f * [a .* b, -1 - a .* a, b; 1 + b .* b, -a .* b, -a];        % d(u; v)/dp [p]x
  by_motion = [scale, zero, -scale .* a; zero, scale, -scale .* b];       % d(u; v)/dp
  J = [by_turn * L, by_motion * -Rt];
end
