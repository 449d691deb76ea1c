% CONVERGENCE_DEMO  All ten rotation types on six photographs of a chessboard.
%
%   convergence_demo(folder)
%
%   Refines every view with every type by kelvane_refine, from starts that are 3 degrees and 5 % of the distance off.
%   The types for bearing vectors get the directions of the same corners. Prints, for each type, the iterations on each
%   view and how far the RMS ends above the least one, as a part of it. Saves convergence_of_types.png in folder, which
%   must exist. Needs kelvane_refine. No screen is needed.
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
  num_views = 6;
  for k = numel(types):-1:1
    for i = num_views:-1:1
      infos(k, i) = refined_view(chessboard_view(i), types(k));
    end
  end
  least = least_rms(infos, types);
  fprintf('%4s %-11s %s %14s\n', 'type', '', sprintf('%7s ', 'view 1', '2', '3', '4', '5', '6'), 'above least');
  for k = 1:numel(types)
    above = ([infos(k, :).rms_after] - least(k, :)) ./ least(k, :);
    marks = ' -';
    counts = arrayfun(@(info) sprintf('%7d%s', info.iterations, marks(1 + (info.exitflag <= 0))), infos(k, :), ...
                      'UniformOutput', false);
    fprintf('%4d %-11s %s %14.1g\n', types(k).number, types(k).name, [counts{:}], max(abs(above)));
  end
  fprintf(['Iterations; those with a - did not converge. On the right: the most that a view is above the least RMS, ' ...
           'of 1.\n']);
  plot_types(infos, types, least, fullfile(folder, 'convergence_of_types.png'));
end

function info = refined_view(view, type)
  observations = view.pixels;
  intrinsics = view.intrinsics;
  if type.bearing
    observations = [view.pixels - intrinsics(2:3)'; intrinsics(1) * ones(1, size(view.pixels, 2))];
    intrinsics = [];
  end
  [~, info] = kelvane_refine(view.start{1}, view.points, observations, intrinsics, 'PoseForm', 'rotation_vector', ...
                             'PoseFrame', 'world_from_camera', 'RotationType', type.number);
end

% The least RMS that any type reaches on each view, in pixels for those and in radians for bearings.
function least = least_rms(infos, types)
  least = zeros(size(infos));
  after = reshape([infos.rms_after], size(infos));
  for bearing = [false, true]
    same = [types.bearing] == bearing;
    least(same, :) = repmat(min(after(same, :), [], 1), sum(same), 1);
  end
end
