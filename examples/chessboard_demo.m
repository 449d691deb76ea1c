% CHESSBOARD_DEMO  Refine the camera poses of six photographs of a chessboard.
%
%   chessboard_demo(folder)
%
%   Refines every view with the rotation types 0 to 3 from starts that are 3 degrees and 5 % of the distance off, prints a
%   table, then one view with all seven pixel types side by side. Saves three pictures in folder, which must exist:
%   chessboard_corners.png, the observed and the predicted corners of a view before and after;
%   chessboard_convergence.png, its RMS after each iteration; chessboard_all_types.png, how the seven types approach the
%   least RMS. No screen is needed.
%
%   Example
%     chessboard_demo('.');
%
%   See also kelvane_mex, chessboard_view, types_demo.

% SPDX-License-Identifier: BSD-3-Clause
% The demonstration of the whole module.
function chessboard_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  names = {'0 aau', '1 aan', '2 qu', '3 qn'};
  views = cell(1, 6);
  for i = 1:6
    views{i} = chessboard_view(i);
  end
  print_refinements(views, names);
  shown = views{5};
  plot_corners(shown, 0, fullfile(folder, 'chessboard_corners.png'));
  plot_convergence(shown, names, 10, fullfile(folder, 'chessboard_convergence.png'));
  types_demo(folder);
end
