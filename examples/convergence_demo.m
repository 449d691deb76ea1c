% CONVERGENCE_DEMO  The seven rotation types for pixels on six photographs of a chessboard.
%
%   convergence_demo(folder)
%
%   Refines every view with every type by kelvane_mex, one iteration in a call, from starts that are 3 degrees and 5 % of
%   the distance off. Prints, for each type, the iterations to the least RMS of each view and how far it ends above that,
%   as a part of it. Saves convergence_of_types.png in folder, which must exist. No screen is needed.
%
%   Example
%     convergence_demo('.');
%
%   See also kelvane_demo, kelvane_types, types_demo.

% SPDX-License-Identifier: BSD-3-Clause
% How every rotation type arrives on real measurements.
function convergence_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  types = kelvane_types();
  types = types(~[types.bearing]);
  num_views = 6;
  num_iterations = 8;
  above = zeros(numel(types), num_iterations + 1, num_views);  % the least RMS, as a part of it
  for i = 1:num_views
    view = chessboard_view(i);
    above(:, :, i) = race(view, [types.number], num_iterations) / rms_of_view(view, 0, view.optimum{1});
  end
  fprintf('%4s %-11s %s %14s\n', 'type', '', sprintf('%7s ', 'view 1', '2', '3', '4', '5', '6'), 'above least');
  for k = 1:numel(types)
    counts = arrayfun(@(i) text_of_count(above(k, :, i)), 1:num_views, 'UniformOutput', false);
    fprintf('%4d %-11s %s %14.1g\n', types(k).number, types(k).name, [counts{:}], max(abs(above(k, end, :))));
  end
  fprintf(['Iterations until rounding hides how far the RMS is above the least one; - where it never does. On the ' ...
           'right: the most that a view ends above the least RMS, of 1.\n']);
  plot_types(above, types, fullfile(folder, 'convergence_of_types.png'));
end

function text = text_of_count(above)
  rounding = 1e-13;
  arrived = find(above < rounding, 1);
  if isempty(arrived)
    text = sprintf('%7s ', '-');
  else
    text = sprintf('%7d ', arrived - 1);
  end
end
