% CHESSBOARD_DEMO  Refine the camera poses of six photographs of a chessboard.
%
%   chessboard_demo(folder)
%
%   Refines every view with the rotation types 0 to 3 from starts that are 3 degrees and 5 % of the distance off, prints a
%   table, and saves two pictures in folder, which must exist: chessboard_corners.png, the observed and the predicted
%   corners of a view before and after, and chessboard_convergence.png, its RMS after each iteration. No screen is needed.
%
%   Example
%     chessboard_demo(tempdir());
%
%   See also kelvane_mex, chessboard_view.

% SPDX-License-Identifier: BSD-3-Clause
% The demonstration of the whole module.
function chessboard_demo(folder)
  if exist('OCTAVE_VERSION', 'builtin')
    warning('off', 'Octave:gnuplot-graphics', 'local');
    graphics_toolkit('gnuplot');
  end
  names = {'0 aau', '1 aan', '2 qu', '3 qn'};
  views = cell(1, 6);
  for i = 1:6
    views{i} = chessboard_view(i);
  end
  print_refinements(views, names);
  fprintf('Pictures:\n');
  shown = views{5};
  plot_corners(shown, 0, fullfile(folder, 'chessboard_corners.png'));
  plot_convergence(shown, names, 10, fullfile(folder, 'chessboard_convergence.png'));
end
