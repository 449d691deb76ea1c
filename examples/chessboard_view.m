% CHESSBOARD_VIEW  Read one of the six chessboard views in examples/data.
%
%   view = chessboard_view(id)
%
%   id is 1 to 6, the number of the photograph. Fields of view:
%     id          as given
%     points      3 x 54 corners of the board, metres
%     pixels      2 x 54 measured corners (u; v), pixels
%     intrinsics  [k11, k13, k23], pixels
%     start       1 x 3 cell: the [r, t] to start from, r as rotation vector, angle-axis and quaternion
%     optimum     1 x 3 cell: the [r, t] of the least squared error in the same forms, known from other solvers
%     image_size  [width, height], pixels
%
%   Example
%     view = chessboard_view(1);
%     x = kelvane_mex([view.start{1}, view.intrinsics], view.points, view.pixels);
%
%   See also kelvane_mex, chessboard_demo, representation_of.

% SPDX-License-Identifier: BSD-3-Clause
% Reader of the chessboard data.
function view = chessboard_view(id)
  folder = fullfile(fileparts(mfilename('fullpath')), 'data', 'chessboard');
  problem = row_of(id, dlmread(fullfile(folder, 'problems.csv'), ',', 1, 0));
  corners = dlmread(fullfile(folder, sprintf('obs_%02d.csv', id)), ',', 1, 0);

  view.id = id;
  view.points = corners(:, 1:3)';
  view.pixels = corners(:, 4:5)';
  view.intrinsics = problem(3:5);
  view.image_size = problem(6:7);
  view.start = poses(row_of(id, dlmread(fullfile(folder, 'pose_start.csv'), ',', 1, 0)));
  view.optimum = poses(row_of(id, dlmread(fullfile(folder, 'pose_optimal_pixel.csv'), ',', 1, 0)));
end

function row = row_of(id, table)
  row = table(table(:, 1) == id, :);
end

% Of one line of a pose file, [r, t] in each representation.
function x = poses(row)
  t = row(13:15);
  x = {[row(2:4), t], [row(5:8), t], [row(9:12), t]};
end
