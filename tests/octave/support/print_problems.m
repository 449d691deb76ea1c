% SPDX-License-Identifier: BSD-3-Clause
% Prints, as a table in Markdown, how kelvane_refine with default options ends on the measurements that are here: for
% each set and cost the iterations and the largest distance from the optimum that is stored there.
function print_problems()
  rows = {'chessboard', 'pixel'; 'bal', 'pixel'; 'bal_adjusted', 'pixel'; 'castle', 'pixel'; ...
          'omni', 'chord'; 'chessboard', 'chord'; 'bal', 'chord'; 'bal_adjusted', 'chord'; 'castle', 'chord'};
  fprintf('| Set | Cost | Problems | Iterations | Rotation (rad) | Centre (of the distance) | Exit flags |\n');
  fprintf('| --- | --- | --- | --- | --- | --- | --- |\n');
  for k = 1:size(rows, 1)
    problems = shared_problems(rows{k, :});
    n = numel(problems);
    results = zeros(n, 4);
    for i = 1:n
      [~, info] = kelvane_refine(problems(i).start, problems(i).points, problems(i).observations, ...
                                 problems(i).intrinsics, 'PoseFrame', 'world_from_camera');
      [turn, shift] = distance_from(problems(i), info.pose);
      results(i, :) = [info.iterations, turn, shift, info.exitflag];
    end
    fprintf('| %s | %s | %d | %d to %d | %.1e | %.1e |%s |\n', rows{k, :}, n, min(results(:, 1)), max(results(:, 1)), ...
            max(results(:, 2)), max(results(:, 3)), sprintf(' %d', unique(results(:, 4))));
  end
end
