% SPDX-License-Identifier: BSD-3-Clause
% How what a camera of read_intrinsics sees changes with its pose, (d n) x 6: rows in the order of the observations' memory,
% columns for a rotation vector w in the camera frame (R becomes R * exp([w]x)) and for the centre (Eqs. 40 and 41). p are
% the points in the camera frame. rays, the second output, is the same for p itself, (3 n) x 6.
function [J, rays] = tangent_jacobian(camera, R, p)
  n = size(p, 2);
  zero = zeros(1, n);
  % dp = [p]x w - R' dt; each column holds the three rows of every point
  rays = [reshape([zero; p(3, :); -p(2, :)], [], 1), reshape([-p(3, :); zero; p(1, :)], [], 1), ...
          reshape([p(2, :); -p(1, :); zero], [], 1), kron(ones(n, 1), -R')];
  if camera.bearing
    lengths = reshape(sqrt(sum(p.^2, 1)) .* ones(3, 1), [], 1);
    e = p(:) ./ lengths;
    along = reshape(sum(reshape(e .* rays, 3, n, 6), 1), n, 6);
    J = (rays - e .* kron(along, [1; 1; 1])) ./ lengths;
  else
    dx = rays(1:3:end, :);
    dy = rays(2:3:end, :);
    dz = rays(3:3:end, :);
    x = (p(1, :) ./ p(3, :))';
    y = (p(2, :) ./ p(3, :))';
    dx = (dx - x .* dz) ./ p(3, :)';
    dy = (dy - y .* dz) ./ p(3, :)';
    J = zeros(2 * n, 6);
    J(1:2:end, :) = camera.A(1, 1) * dx + camera.A(1, 2) * dy;
    J(2:2:end, :) = camera.A(2, 2) * dy;
  end
end
