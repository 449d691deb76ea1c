% SPDX-License-Identifier: BSD-3-Clause
% Draws the points of a refinement's info, its camera before and after, and how uncertain the centre is.
function drawn = plot_scene(target, info)
  X = info.points;
  distance = sqrt(mean(sum((X - info.pose.centre).^2, 1)));
  corners = rays_to_corners(info) * distance / 5;
  drawn.points = plot3(target, X(1, :), X(2, :), X(3, :), '.', 'color', [0.35, 0.35, 0.35], 'markersize', 6);
  drawn.start = plot_pyramid(target, info.history(1).pose, corners, [0.84, 0.37, 0]);
  drawn.camera = plot_pyramid(target, info.pose, corners, [0, 0.45, 0.70]);
  [drawn.ellipsoid, zoom] = plot_ellipsoid(target, info, distance);
  axis(target, cube_around([X, info.pose.centre, info.history(1).pose.centre]));
  set(target, 'plotboxaspectratio', [1, 1, 1]);
  view(target, -30, 20);
  set(target, 'box', 'on');
  grid(target, 'on');
  xlabel(target, 'X');
  ylabel(target, 'Y');
  zlabel(target, 'Z');
  if isempty(drawn.ellipsoid) && all(all(isfinite(info.covariance(4:6, 4:6))))
    title(target, 'scene, centre fixed');
  elseif isempty(drawn.ellipsoid)
    title(target, 'scene, centre not determined');
  else
    title(target, sprintf('scene, 3 sigma %g times', zoom));
  end
end

% Limits of the same length along all three axes, so that shapes are true.
function limits = cube_around(points)
  middle = (max(points, [], 2) + min(points, [], 2)) / 2;
  half = 0.55 * max(max(points, [], 2) - min(points, [], 2)) + realmin;
  limits = reshape([middle - half, middle + half]', 1, 6);
end

% The corners of what a camera sees, in its frame at depth 1: the box of the pixels, or 45 degrees to each side.
function rays = rays_to_corners(info)
  box = [-1, 1, 1, -1; -1, -1, 1, 1; 1, 1, 1, 1];
  rays = box;
  if ~isempty(info.intrinsics)
    low = min(info.observations, [], 2);
    high = max(info.observations, [], 2);
    pixels = (low + high) / 2 + box(1:2, :) .* (high - low) / 2;
    [rays, ~] = kelvane_undistort(pixels, info.intrinsics, 'directions');
    rays = rays ./ max(abs(rays(3, :)), 0.2);  % at depth 1, but for what is seen beside the camera
  end
end

% From the centre to the corners and around them.
function handle = plot_pyramid(target, pose, corners, color)
  path = [zeros(3, 1), corners(:, [1, 2]), zeros(3, 1), corners(:, [3, 4]), zeros(3, 1), NaN(3, 1), corners(:, [2, 3]), ...
          NaN(3, 1), corners(:, [4, 1])];
  path = pose.rotation * path + pose.centre;
  handle = plot3(target, path(1, :), path(2, :), path(3, :), '-', 'color', color);
end

% Three great circles of the ellipsoid of three standard deviations, enlarged to between 1 and 10 % of the distance.
function [handle, zoom] = plot_ellipsoid(target, info, distance)
  handle = [];
  zoom = NaN;
  covariance = info.covariance(4:6, 4:6);
  if ~all(isfinite(covariance(:)))
    return;
  end
  [axes_of_it, variances] = eig((covariance + covariance') / 2);
  half = axes_of_it * sqrt(max(variances, 0));
  if norm(half) == 0
    return;
  end
  zoom = 10^floor(log10(0.1 * distance / (3 * norm(half) + realmin)));
  turn = [linspace(0, 2 * pi, 61), NaN];
  none = 0 * turn;
  circles = [cos(turn), none, sin(turn); sin(turn), cos(turn), none; none, sin(turn), cos(turn)];
  circles = info.pose.centre + 3 * zoom * half * circles;
  handle = plot3(target, circles(1, :), circles(2, :), circles(3, :), '-', 'color', [0.8, 0.2, 0.5]);
end
