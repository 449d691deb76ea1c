% MATCHES_DEMO  The corners of a chessboard, 60 % of them mistaken for each other: which are kept, and which thrown out.
%
%   matches_demo(folder)
%
%   Exchanges the observations of 32 of 54 corners of one photograph among each other, finds the pose without a start, and
%   prints how far it is from the optimum of all corners as they were measured. Saves matches.png in folder, which must
%   exist: each match as it was given, from where the corner is seen to where the match has it, and the ones that were kept.
%   Needs kelvane_estimate. No screen is needed.
%
%   Example
%     matches_demo('.');
%
%   See also kelvane_demo, kelvane_estimate, outliers_demo.

% SPDX-License-Identifier: BSD-3-Clause
% What an estimate is for.
function matches_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  view = chessboard_view(4);
  wrong = find(mod(7 * (1:54), 27) < 16);  % spread evenly, the same every time
  measured = view.pixels;
  view.pixels(:, wrong) = measured(:, wrong(1 + mod(7 * (0:31) + 3, 32)));
  best = kelvane_pose(view.optimum{1}, 'rotation_vector', 'world_from_camera');
  [pose, info] = kelvane_estimate(view.points, view.pixels, view.intrinsics);
  turn = acos(min(1, (trace(best.rotation' * pose.rotation) - 1) / 2)) * 180 / pi;
  shift = 100 * norm(pose.centre - best.centre) / norm(best.centre - mean(view.points, 2));
  fprintf('%d of 54 matches are wrong. %s\n', numel(wrong), info.message);
  fprintf('right and kept: %d, wrong and kept: %d, after %d trials\n', sum(info.inliers) - sum(info.inliers(wrong)), ...
          sum(info.inliers(wrong)), info.num_trials);
  fprintf('off the optimum of all 54 as measured: %.3f deg, %.3f %%\n', turn, shift);
  f = new_picture(5);
  grey = [0.5, 0.5, 0.5];
  orange = [0.84, 0.37, 0];
  blue = [0, 0.45, 0.7];
  panel([0.09, 0.15, 0.39, 0.74], view, measured, true(1, 54), grey, 'matches, 60 % of them wrong');
  draw_legend({'where the match has a corner', 'line: to where it is seen'}, {'x', '-'}, [grey; grey], [4, 4], ...
              [160, 180], 195, [385, 415]);
  panel([0.59, 0.15, 0.39, 0.74], view, kelvane_project(pose, view.points, view.intrinsics), ~info.inliers, orange, ...
        'found without a start');
  plot(view.pixels(1, info.inliers), view.pixels(2, info.inliers), 'o', 'color', blue, 'markersize', 5);
  draw_legend({'kept', 'thrown out', 'line: to where the pose sees it'}, {'o', 'x', '-'}, [blue; orange; orange], ...
              [5, 4, 4], [160, 180], 195, [375, 400, 425]);
  save_picture(f, fullfile(folder, 'matches.png'), [1300, 580]);
end

% Lines from where corners are seen to where their matches have them.
function panel(position, view, seen, some, colour, name)
  axes('position', position);
  hold on;
  plot([seen(1, some); view.pixels(1, some)], [seen(2, some); view.pixels(2, some)], '-', 'color', colour);
  plot(view.pixels(1, some), view.pixels(2, some), 'x', 'color', colour, 'markersize', 4);
  axis equal;
  axis([140, 580, 80, 440]);
  set(gca, 'ydir', 'reverse', 'box', 'on');  % v points down
  xlabel('u (pixels)');
  ylabel('v (pixels)');
  title(name);
end
