% SPDX-License-Identifier: BSD-3-Clause
% The poses in results of kelvane_batch, a column for each with its rotation's columns and its centre, and the names of the
% problems, 1 x n; those with an error, and those of estimates that found no pose, are left out.
function [poses, names] = poses_of_results(results)
  if ~isstruct(results) || ~all(isfield(results, {'name', 'info'}))
    error('kelvane:results', 'results must be the struct array that kelvane_batch returns; this is of class %s.', class(results));
  end
  found = results(~cellfun('isempty', {results.info}));
  names = reshape({found.name}, 1, []);
  poses = zeros(12, numel(found));
  for k = 1:numel(found)
    try
      pose = found(k).info.pose;
      poses(:, k) = [pose.rotation(:); pose.centre(:)];
    catch
      error('kelvane:results', 'The info of a result has no pose with rotation and centre: number %d of those without error.', k);
    end
  end
  has_pose = ~any(isnan(poses), 1);
  poses = poses(:, has_pose);
  names = names(has_pose);
end
