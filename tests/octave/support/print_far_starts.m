% SPDX-License-Identifier: BSD-3-Clause
% Prints how refinements from num_starts far starts end, for pixels and directions, as a table in Markdown.
function print_far_starts(num_starts)
  kinds = {'pixel', 'chord'};
  fprintf('| Cost | Starts | Found the optimum | Converged elsewhere | Median iterations | Worse than the start | Errors |\n');
  fprintf('| --- | --- | --- | --- | --- | --- | --- |\n');
  for k = 1:2
    scenes = arrayfun(@(i) far_scene(i, k == 2), 1:12);
    tally = refine_far_starts(scenes, num_starts, 5000 + 10 * (k - 1));
    fprintf('| %s | %d | %.1f %% | %.1f %% | %g | %d | %d |\n', kinds{k}, num_starts, ...
            100 * tally.found / num_starts, 100 * (tally.converged - tally.found) / num_starts, tally.iterations, ...
            tally.worse, tally.errors + tally.endless);
    fflush(stdout);
  end
end
