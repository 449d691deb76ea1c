% OUTLIERS_DEMO  A fifth of the corners of a chessboard in wrong places, refined with and without a robust loss.
%
%   outliers_demo(folder)
%
%   Moves 11 of 54 corners of one photograph anywhere, refines the pose with every loss, and prints how far each result is
%   from the optimum of the clean corners. Saves outliers.png in folder, which must exist: residuals without a loss and with
%   Tukey's. Needs kelvane_refine. No screen is needed.
%
%   Example
%     outliers_demo('.');
%
%   See also kelvane_demo, kelvane_refine, kelvane_plot.

% SPDX-License-Identifier: BSD-3-Clause
% What a robust loss is for.
function outliers_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  view = chessboard_view(5);
  moved = 3:5:53;
  places = view.image_size' .* [mod(0.618 * (1:11), 1); mod(0.414 * (1:11), 1)];  % spread evenly, the same every time
  view.pixels(:, moved) = places;
  best = kelvane_pose(view.optimum{1}, 'rotation_vector', 'world_from_camera');
  distance = norm(best.centre - mean(view.points, 2));
  losses = {'none', 'huber', 'cauchy', 'tukey'};
  fprintf('%-8s %15s %15s %10s %10s\n', 'loss', 'turned off by', 'shifted off by', 'outliers', 'iterations');
  for k = 4:-1:1
    [~, infos(k)] = kelvane_refine(view.start{1}, view.points, view.pixels, view.intrinsics, ...
                                   'PoseFrame', 'world_from_camera', 'Loss', losses{k});
  end
  for k = 1:4
    turn = acos(min(1, (trace(best.rotation' * infos(k).pose.rotation) - 1) / 2)) * 180 / pi;
    shift = 100 * norm(infos(k).pose.centre - best.centre) / distance;
    fprintf('%-8s %11.3f deg %13.3f %% %10d %10d\n', losses{k}, turn, shift, sum(~infos(k).inliers), infos(k).iterations);
  end
  f = new_picture(5);
  panel([0.08, 0.2, 0.37, 0.68], infos(1), 'no loss: outliers pull the pose away', view.image_size);
  panel([0.57, 0.2, 0.37, 0.68], infos(4), 'Tukey: outliers have no pull', view.image_size);
  save_picture(f, fullfile(folder, 'outliers.png'), [1300, 580]);
end

function panel(position, info, name, image_size)
  target = axes('position', position);
  kelvane_plot(target, info, 'after');
  axis(target, [0, image_size(1), 0, image_size(2)]);
  title(target, name);
end
