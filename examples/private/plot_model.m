% SPDX-License-Identifier: BSD-3-Clause
% Draws the RMS of each image before and after, and all points with the centres of the cameras before and after and the way
% that each looks, and saves the picture.
function plot_model(problems, results, file)
  good = cellfun(@isempty, {results.error});
  problems = problems(good);
  after = [results(good).pose];
  before = [problems.start];
  ids = [problems.point_ids];
  points = [problems.points];
  [~, first] = unique(ids);
  points = points(:, first);
  f = new_picture(5);
  target = axes('position', [0.08, 0.14, 0.42, 0.74]);
  draw_rms(target, results(good));
  target = axes('position', [0.58, 0.08, 0.40, 0.82]);
  plot3(target, points(1, :), points(2, :), points(3, :), '.', 'color', [0.6, 0.6, 0.6], 'markersize', 3);
  hold(target, 'on');
  sight = mean(sqrt(sum(([after.centre] - mean(points, 2)).^2, 1))) / 4;
  draw_cameras(target, before, sight, [0.84, 0.37, 0]);
  draw_cameras(target, after, sight, [0, 0.45, 0.70]);
  axis(target, cube_around([points, [before.centre], [after.centre]]));
  set(target, 'plotboxaspectratio', [1, 1, 1]);
  view(target, -30, 30);
  title(target, sprintf('%d cameras, before (orange) and after (blue)', numel(after)));
  save_picture(f, file, [1500, 640]);
end

function draw_rms(target, results)
  n = numel(results);
  infos = [results.info];
  before = [infos.rms_plain_before];
  after = [infos.rms_plain_after];
  semilogy(target, 1:n, before, 'o', 'color', [0.84, 0.37, 0]);
  hold(target, 'on');
  semilogy(target, 1:n, after, 'x', 'color', [0, 0.45, 0.70]);
  set(target, 'xlim', [0, n + 1], 'ylim', [min(after) / 3, max(before) * 3], 'ygrid', 'on', 'yminorgrid', 'off');
  xlabel(target, 'image');
  ylabel(target, 'RMS (pixels)');
  title(target, 'RMS of each image before (o) and after (x)');
end

% A line from each centre along the optical axis.
function draw_cameras(target, poses, sight, color)
  for k = 1:numel(poses)
    c = poses(k).centre;
    ahead = c + sight * poses(k).rotation(:, 3);
    plot3(target, [c(1), ahead(1)], [c(2), ahead(2)], [c(3), ahead(3)], '-', 'color', color);
    plot3(target, c(1), c(2), c(3), 'o', 'color', color, 'markersize', 4);
  end
end

% Limits of the same length along all three axes.
function limits = cube_around(points)
  middle = (max(points, [], 2) + min(points, [], 2)) / 2;
  half = max(max(points, [], 2) - min(points, [], 2)) * 0.52;
  limits = reshape([middle - half, middle + half]', 1, 6);
end
