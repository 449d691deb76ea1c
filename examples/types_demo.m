% TYPES_DEMO  The seven pixel types side by side on one photograph of a chessboard.
%
%   types_demo(folder)
%
%   Refines view 4 with each type, one iteration in a call, and prints how far the RMS is above the least one. Saves
%   chessboard_all_types.png in folder, which must exist. No screen is needed.
%
%   Example
%     types_demo('.');
%
%   See also kelvane_demo, chessboard_demo, kelvane_types.

% SPDX-License-Identifier: BSD-3-Clause
% The race of the rotation types.
function types_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  types = [0, 1, 2, 3, -1, -2, -3];
  names = {'0 aau', '1 aan', '2 qu', '3 qn', '-1 qu,aau,aan', '-2 aau,qu,aan', '-3 aan,qu,aau'};
  view = chessboard_view(4);
  excess = race(view, types, 10);
  print_race(view, names, excess);
  plot_race(view, names, excess, fullfile(folder, 'chessboard_all_types.png'));
end
