% SPDX-License-Identifier: BSD-3-Clause
% Draws the points of a refinement's info, two thousand at most, its camera before and after, and how uncertain the centre is.
% Coordinates far from zero lose what their axis names, so that their ticks can be told apart.
function drawn = plot_scene(target, info)
  start = info.history(1).pose;
  [sides, origin] = cube_around([info.points, info.pose.centre, start.centre]);
  info.pose.centre = info.pose.centre - origin;
  start.centre = start.centre - origin;
  info.points = info.points - origin;
  X = evenly_spread(info.points, 2000);
  distance = sqrt(mean(sum((info.points - info.pose.centre).^2, 1)));
  corners = rays_to_corners(info) * distance / 5;
  drawn.points = plot3(target, X(1, :), X(2, :), X(3, :), '.', 'color', [0.5, 0.5, 0.5], 'markersize', 8);
  drawn.start = plot_pyramid(target, start, corners, [0.84, 0.37, 0]);
  drawn.camera = plot_pyramid(target, info.pose, corners, [0, 0.45, 0.70]);
  [drawn.ellipsoid, zoom] = plot_ellipsoid(target, info, distance);
  show_cube(target, sides, origin);
  if isempty(drawn.ellipsoid) && all(all(isfinite(info.covariance(4:6, 4:6))))
    title(target, 'scene, centre fixed');
  elseif isempty(drawn.ellipsoid)
    title(target, 'scene, centre not determined');
  elseif zoom == 1
    title(target, 'scene, ellipsoid in true size');
  else
    title(target, sprintf('scene, ellipsoid enlarged %g times', zoom));
  end
  add_legend(target, {drawn.points, 'points', size(X, 2), size(info.points, 2)
                      drawn.start, 'start', 1, 1
                      drawn.camera, 'refined', 1, 1
                      drawn.ellipsoid, '3 sigma of centre', numel(drawn.ellipsoid), 1});
end

% Limits of the same length along all three axes, so that shapes are true, less an origin that is round beside that length.
function [sides, origin] = cube_around(points)
  middle = (max(points, [], 2) + min(points, [], 2)) / 2;
  half = 0.55 * max(max(points, [], 2) - min(points, [], 2)) + realmin;
  unit = 10^floor(log10(half));
  origin = unit * round(middle / unit) .* (abs(middle) > 100 * half);
  sides = middle - origin + half * [-1, 1];
end

function show_cube(target, sides, origin)
  axis(target, reshape(sides', 1, 6));
  set(target, 'plotboxaspectratio', [1, 1, 1], 'dataaspectratio', [1, 1, 1], 'box', 'on', 'gridcolor', [0.5, 0.5, 0.5]);
  view(target, -35, 25);
  grid(target, 'on');
  length = sides(1, 2) - sides(1, 1);
  steps = [1, 2, 5, 10] * 10^floor(log10(length / 4));
  step = steps(find(steps >= length / 4, 1));
  names = 'XYZ';
  for k = 1:3
    set(target, [lower(names(k)), 'tick'], step * (ceil(sides(k, 1) / step):floor(sides(k, 2) / step)) + 0);  % no -0
    name = names(k);
    if origin(k) ~= 0
      signs = '-+';
      name = sprintf('%s %s %.12g', name, signs(1 + (origin(k) < 0)), abs(origin(k)));
    end
    name_axis(target, k, [name, ' (world unit)'], sides);
  end
end

% gnuplot writes two of the names over their ticks; a text beside the edge of the cube stays clear of them.
function name_axis(target, k, name, sides)
  names = 'xyz';
  if k < 3 && is_gnuplot(target)
    at = sides(:, 1);
    at(k) = mean(sides(k, :));
    place = get(target, 'position');
    at(3 - k) = at(3 - k) - (0.18 + 0.06 / place(4)) * (sides(1, 2) - sides(1, 1));  % small axes have large letters
    alignments = {'left', 'right'};
    text(at(1), at(2), at(3), name, 'parent', target, 'horizontalalignment', alignments{k}, ...
         'fontsize', get(target, 'fontsize'));
  else
    set(get(target, [names(k), 'label']), 'string', name);
  end
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
