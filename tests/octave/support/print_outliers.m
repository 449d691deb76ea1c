% SPDX-License-Identifier: BSD-3-Clause
% Prints, as a table in Markdown, the largest distance from the optimum of the clean pixels with a fifth of them moved, in
% degrees and per cent of the distance, for each set and loss.
function print_outliers()
  losses = {'none', 'huber', 'cauchy', 'tukey'};
  fprintf('| Set |%s\n| --- | --- | --- | --- | --- |\n', sprintf(' %s |', losses{:}));
  for set = {'bal_adjusted', 'castle', 'bal', 'chessboard'}
    problems = shared_problems(set{1}, 'pixel');
    worst = zeros(4, 2);
    for k = 1:numel(problems)
      problem = with_outliers(problems(k), 100 + k);
      for i = 1:4
        [~, info] = kelvane_refine(problem.start, problem.points, problem.observations, problem.intrinsics, ...
                                   'PoseFrame', 'world_from_camera', 'Loss', losses{i});
        [turn, shift] = distance_from(problem, info.pose);
        worst(i, :) = max(worst(i, :), [turn * 180 / pi, 100 * shift]);
      end
    end
    fprintf('| %s |%s\n', set{1}, sprintf(' %.3f, %.3f |', worst'));
  end
end
