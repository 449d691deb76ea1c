% SPDX-License-Identifier: BSD-3-Clause
% Draws where the points of a refinement's info were observed and where a pose sees them: all, or 500 inliers and 500 outliers,
% which are as many as can be told apart in a picture.
function drawn = plot_residuals(target, info, pose, rms, name)
  good = find(info.inliers);
  bad = find(~info.inliers);
  shown_good = evenly_spread(good, 500);
  shown_bad = evenly_spread(bad, 500);
  shown = sort([shown_good, shown_bad]);
  all_observed = in_picture(info.observations);
  observed = all_observed(:, shown);
  seen = in_picture(kelvane_project(pose, info.points(:, shown), info.intrinsics));
  lines = cat(3, observed, seen, NaN(size(seen)));
  lines = reshape(permute(lines, [1, 3, 2]), 2, []);
  mark = @(xy, style, color) plot(target, xy(1, :), xy(2, :), style, 'color', color, 'markersize', 4);
  drawn.residuals = mark(lines, '-', [0.6, 0.6, 0.6]);
  drawn.observed = mark(all_observed(:, shown_good), 'o', [0, 0.45, 0.70]);
  drawn.outliers = mark(all_observed(:, shown_bad), 's', [0.8, 0.2, 0.5]);
  drawn.predicted = mark(seen, 'x', [0.84, 0.37, 0]);
  if isempty(info.intrinsics)
    draw_right_angle(target, observed);
    axis_names = {'right (degrees off the axis)', 'down (degrees off the axis)'};
    unit = 'rad';
  else
    axis_names = {'u (pixels)', 'v (pixels)'};
    unit = 'pixels';
  end
  directions = {'reverse', 'normal'};
  set(target, 'ydir', directions{1 + has_y_up(info.intrinsics)}, 'box', 'on');
  axis(target, 'equal');
  axis(target, box_around(all_observed));
  xlabel(target, axis_names{1});
  ylabel(target, [axis_names{2}, repmat('\n', 1, is_gnuplot(target))]);  % clear of the ticks
  title(target, sprintf('%s: %s %.3g %s', name, name_of_rms(info), rms, unit));
  add_legend(target, {drawn.observed, 'observed', numel(shown_good), numel(good)
                      drawn.outliers, 'outliers', numel(shown_bad), numel(bad)
                      drawn.predicted, 'predicted', 1, 1
                      drawn.residuals, 'difference', 1, 1});
end

% Pixels stay; directions become the angle from the optical axis along the way that they point to.
function xy = in_picture(seen)
  xy = seen(1:2, :);
  if size(seen, 1) == 3
    across = sqrt(sum(xy.^2, 1));
    degrees = atan2(across, seen(3, :)) * 180 / pi;
    xy = xy .* (degrees ./ max(across, realmin));
  end
end

function yes = has_y_up(intrinsics)
  yes = isstruct(intrinsics) && strcmp(intrinsics.model, 'BAL');
end

function draw_right_angle(target, observed)
  if any(sum(observed.^2, 1) > 90^2)
    turn = linspace(0, 2 * pi, 181);
    plot(target, 90 * cos(turn), 90 * sin(turn), '--', 'color', [0.5, 0.5, 0.5], 'linewidth', 0.5);
  end
end

% What was observed and a tenth more: predictions may be anywhere.
function limits = box_around(xy)
  low = min(xy, [], 2);
  high = max(xy, [], 2);
  margin = max(0.1 * max(high - low), eps(max(abs(xy(:)))) + 1e-9);
  limits = [low(1) - margin, high(1) + margin, low(2) - margin, high(2) + margin];
end
