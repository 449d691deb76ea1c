% SPDX-License-Identifier: BSD-3-Clause
% How far the RMS of a view is above the least one after each iteration, for each type: one row for each type, one column
% for each iteration from 0 on. A type that has come to rest keeps its last value.
function excess = race(view, types, num_iterations)
  least = rms_of_view(view, 0, view.optimum{1});
  excess = zeros(numel(types), num_iterations + 1);
  for k = 1:numel(types)
    rms = rms_by_iteration(view, types(k), num_iterations);
    rms(end + 1:num_iterations + 1) = rms(end);
    excess(k, :) = rms - least;
  end
end
