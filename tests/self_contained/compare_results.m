% SPDX-License-Identifier: BSD-3-Clause
% Compares two files of save_results: the same calls, and poses that differ by 1e-12 of their length at most.
function compare_results(one, other)
  [names, poses] = results_in(one);
  [other_names, other_poses] = results_in(other);
  assert(names, other_names);
  assert(numel(names) >= 84);  % the chessboard's
  largest = 0;
  for i = 1:numel(names)
    difference = norm(poses{i} - other_poses{i}) / norm(poses{i});
    if ~(difference <= 1e-12)
      error('%s: the results differ by %.1e of their length', names{i}, difference);
    end
    largest = max(largest, difference);
  end
  printf('%d poses, largest difference %.1e\n', numel(names), largest);
end

function [names, poses] = results_in(file)
  lines = strsplit(strtrim(fileread(file)), "\n");
  parts = cellfun(@(line) strsplit(line, ':'), lines, 'UniformOutput', false);
  names = cellfun(@(part) part{1}, parts, 'UniformOutput', false);
  poses = cellfun(@(part) sscanf(part{2}, '%g')', parts, 'UniformOutput', false);
end
