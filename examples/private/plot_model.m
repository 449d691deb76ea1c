% SPDX-License-Identifier: BSD-3-Clause
% Draws the RMS of each image before and after, and all points with the centres of the cameras before and after and the way
% that each looks, and saves the picture.
function plot_model(problems, results, file)
  good = cellfun(@isempty, {results.error});
  f = new_picture(5);
  draw_rms(axes('position', [0.08, 0.14, 0.40, 0.74]), [results(good).info]);
  draw_scene(axes('position', [0.59, 0.08, 0.40, 0.82]), problems(good), [results(good).pose]);
  save_picture(f, file, [1500, 640]);
end

function draw_rms(target, infos)
  n = numel(infos);
  before = [infos.rms_plain_before];
  after = [infos.rms_plain_after];
  colors = [0.84, 0.37, 0; 0, 0.45, 0.70];
  semilogy(target, 1:n, before, 'o', 'color', colors(1, :));
  hold(target, 'on');
  semilogy(target, 1:n, after, 'x', 'color', colors(2, :));
  middle = sqrt(max(after) * min(before));
  draw_legend({'before', 'after'}, {'o', 'x'}, colors, [6, 6], 0.75 * n, 0.8 * n, middle * [1.3, 0.7]);
  set(target, 'xlim', [0, n + 1], 'ylim', [min(after) / 3, max(before) * 3], 'ygrid', 'on', 'yminorgrid', 'off', ...
      'gridcolor', [0.4, 0.4, 0.4]);
  xlabel(target, 'image');
  ylabel(target, 'RMS (pixels)');
  title(target, 'RMS of each image');
end

function draw_scene(target, problems, after)
  before = [problems.start];
  points = [problems.points];
  [~, first] = unique([problems.point_ids]);
  points = points(:, first);
  plot3(target, points(1, :), points(2, :), points(3, :), '.', 'color', [0.6, 0.6, 0.6], 'markersize', 3);
  hold(target, 'on');
  sight = mean(sqrt(sum(([after.centre] - mean(points, 2)).^2, 1))) / 4;
  drawn = draw_cameras(target, before, sight, [0.84, 0.37, 0]);
  drawn(2) = draw_cameras(target, after, sight, [0, 0.45, 0.70]);
  show_cube(target, [points, [before.centre], [after.centre]]);
  title(target, sprintf('%d cameras around the points', numel(after)));
  legend(target, drawn, {'before', 'after'}, 'location', 'southoutside', 'orientation', 'horizontal', 'box', 'off', ...
         'fontsize', 0.9 * get(target, 'fontsize'));
end

% A line from each centre along the optical axis. Returns the last centre's handle.
function drawn = draw_cameras(target, poses, sight, color)
  for k = 1:numel(poses)
    c = poses(k).centre;
    ahead = c + sight * poses(k).rotation(:, 3);
    plot3(target, [c(1), ahead(1)], [c(2), ahead(2)], [c(3), ahead(3)], '-', 'color', color);
    drawn = plot3(target, c(1), c(2), c(3), 'o', 'color', color, 'markersize', 4);
  end
end

% Limits of the same length along all three axes, with names clear of the ticks, over which gnuplot writes.
function show_cube(target, points)
  middle = (max(points, [], 2) + min(points, [], 2)) / 2;
  half = max(max(points, [], 2) - min(points, [], 2)) * 0.52;
  low = middle - half;
  axis(target, reshape([low, middle + half]', 1, 6));
  set(target, 'plotboxaspectratio', [1, 1, 1], 'dataaspectratio', [1, 1, 1], 'box', 'on');
  view(target, -30, 30);
  text(middle(1), low(2) - half / 2, low(3), 'X (model unit)', 'parent', target);
  text(low(1) - half / 2, middle(2), low(3), 'Y (model unit)', 'parent', target, 'horizontalalignment', 'right');
  zlabel(target, 'Z (model unit)');
end
