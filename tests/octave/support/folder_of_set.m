% SPDX-License-Identifier: BSD-3-Clause
% Where the problems of a set of measurements lie: the whole set beside the project, or else the part of it that comes with
% the project; '' where there is neither. What is missing is noted for run_tests.
function folder = folder_of_set(set)
  project = fileparts(fileparts(fileparts(fileparts(mfilename('fullpath')))));
  for place = {fullfile(fileparts(project), 'shared', 'data'), fullfile(project, 'tests', 'data'), ...
               fullfile(project, 'examples', 'data')}
    folder = fullfile(place{1}, set);
    if exist(fullfile(folder, 'problems.csv'), 'file')
      skipped_problems(set, size(dlmread(fullfile(folder, 'problems.csv'), ',', 1, 0), 1));
      return;
    end
  end
  folder = '';
  skipped_problems(set, 0);
end
