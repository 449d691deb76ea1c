% SPDX-License-Identifier: BSD-3-Clause
% Refines every view with every type and prints one line for each. An error when type 0, 1 or 2 misses the least RMS of a
% view, which is known from other solvers.
function print_refinements(views, names)
  keep_going = [0, 0, -1e38, 0];
  max_calls = 50;
  refine_until_still(views{1}, 0, keep_going, 1);  % the first call of a session is slower
  fprintf('%4s %7s  %-12s %11s %11s %9s %6s %7s\n', 'view', 'points', 'type', 'RMS before', 'RMS after', 'least', ...
          'calls', 'ms');
  for i = 1:numel(views)
    view = views{i};
    for type = 0:3
      [poses, milliseconds] = refine_until_still(view, type, keep_going, max_calls);
      before = rms_of_view(view, type, poses(1, :));
      after = rms_of_view(view, type, poses(end, :));
      least = rms_of_view(view, type, view.optimum{representation_of(type)});
      fprintf('%4d %7d  %-12s %11.4f %11.4f %9.4f %6d %7.2f\n', view.id, size(view.points, 2), names{type + 1}, ...
              before, after, least, size(poses, 1) - 1, milliseconds);
      if type <= 2 && abs(after - least) > 1e-9 * least
        error('kelvane:demo', 'View %d was not refined: RMS %.17g instead of %.17g.', view.id, after, least);
      end
    end
  end
  fprintf(['RMS: root mean square distance of the corners in pixels. A call makes 3 iterations for type 0, 1 for the ' ...
           'others; %d calls at most.\n'], max_calls);
  fprintf(['Types 0 to 2 find the least RMS in every view. Type 3 (qn) diverges: its Jacobian takes the diagonal ' ...
           'rotation terms in unsquared entries, so it is not the derivative of its prediction.\n']);
end
