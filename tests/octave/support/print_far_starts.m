% SPDX-License-Identifier: BSD-3-Clause
% Prints how refinements from num_starts far starts for each rotation type end, as a table in Markdown.
function print_far_starts(num_starts)
  scenes = {arrayfun(@(k) far_scene(k, false), 1:12), arrayfun(@(k) far_scene(k, true), 1:12)};
  fprintf('| Type | Starts | Found the optimum | Converged elsewhere | Median iterations | Worse than the start | Errors |\n');
  fprintf('| --- | --- | --- | --- | --- | --- | --- |\n');
  for type = kelvane_types()
    tally = refine_far_starts(scenes{1 + type.bearing}, type.number, num_starts, 5000 + type.number);
    fprintf('| %d (%s) | %d | %.1f %% | %.1f %% | %g | %d | %d |\n', type.number, type.name, num_starts, ...
            100 * tally.found / num_starts, 100 * (tally.converged - tally.found) / num_starts, tally.iterations, ...
            tally.worse, tally.errors + tally.endless);
    fflush(stdout);
  end
end
