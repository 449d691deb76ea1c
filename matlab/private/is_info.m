% SPDX-License-Identifier: BSD-3-Clause
% Whether it is the info of a refinement, with all that kelvane_plot draws, in its sizes.
function yes = is_info(info)
  names = {'history', 'pose', 'points', 'observations', 'intrinsics', 'inliers', 'covariance', 'loss_scale', 'rms_before', ...
           'rms_after', 'message'};
  yes = isstruct(info) && isscalar(info) && all(isfield(info, names)) && ischar(info.message);
  if yes
    n = size(info.points, 2);
    d = 3 - ~isempty(info.intrinsics);
    yes = is_history(info.history) && is_pose(info.pose) && are_numbers({info.loss_scale, 1, 1, info.rms_before, 1, 1, ...
          info.rms_after, 1, 1, info.points, 3, n, info.observations, d, n, info.covariance, 6, 6}) && ...
          islogical(info.inliers) && isequal(size(info.inliers), [1, n]) && ...
          (isempty(info.intrinsics) || isfield(info.intrinsics, 'model') || are_numbers({info.intrinsics, 3, 3}));
  end
end

function yes = is_history(history)
  yes = isstruct(history) && all(isfield(history, {'pose', 'rms'})) && ...
        (isempty(history) || (is_pose(history(1).pose) && are_numbers({[history.rms], 1, numel(history)})));
end

function yes = is_pose(pose)
  yes = isstruct(pose) && isscalar(pose) && all(isfield(pose, {'rotation', 'centre'})) && ...
        are_numbers({pose.rotation, 3, 3, pose.centre, 3, 1});
end

% Of values, each with its number of rows and of columns.
function yes = are_numbers(given)
  yes = true;
  for k = 1:3:numel(given)
    yes = yes && isnumeric(given{k}) && isequal(size(given{k}), [given{k + 1:k + 2}]);
  end
end
