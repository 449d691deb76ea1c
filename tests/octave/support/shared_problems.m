% SPDX-License-Identifier: BSD-3-Clause
% The problems of one set of measurements that are here (tests/data/README.md), as a 1 x n struct array; run_tests says of how
% many others there were none. kind is 'pixel' or 'chord': observations are pixels, or directions of any set, and optimum (1 x
% 6, [r, t]) is the one that is stored for that cost; of crane, which has none, the pose that comes with the data. distance is
% that of the camera from the mean point.
function problems = shared_problems(set, kind)
  problems = struct([]);
  folder = folder_of_set(set);
  if isempty(folder)
    return;
  end
  read = @(name) dlmread(fullfile(folder, name), ',', 1, 0);
  list = read('problems.csv');
  starts = read('pose_start.csv');
  names = {['pose_optimal_', kind, '.csv'], 'pose_dataset.csv'};
  optima = read(names{1 + strcmp(set, 'crane')});
  for i = 1:size(list, 1)
    rows = read(sprintf('obs_%02d.csv', list(i, 1)));
    problem = struct('name', sprintf('%s %d', set, list(i, 1)), 'points', rows(:, 1:3)', 'observations', rows(:, 4:end)', ...
                     'intrinsics', list(i, 3:5), 'start', starts(i, [2:4, 13:15]), 'optimum', optima(i, [2:4, 13:15]));
    if strcmp(kind, 'chord')
      problem = with_directions(problem);
    end
    problem.distance = norm(problem.optimum(4:6)' - mean(problem.points, 2));
    problems = [problems, problem]; %#ok<AGROW>
  end
end

function problem = with_directions(problem)
  f = problem.intrinsics;
  if size(problem.observations, 1) == 2
    problem.observations = [(problem.observations - f(2:3)') / f(1); ones(1, size(problem.points, 2))];
  end
  problem.intrinsics = [];
end
