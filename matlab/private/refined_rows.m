% SPDX-License-Identifier: BSD-3-Clause
% The results of kelvane_engine('refine', ...), or 'estimate', as a struct array with an element for each problem: pose, info,
% exitflag, rms_before, rms_after, error, identifier and state. points, observations and intrinsics, cells of what was handed
% over, complete the infos. Nothing is done problem by problem, and by functions of the interpreter itself: anything else would take longer
% than the refinements.
function rows = refined_rows(found, starts, points, observations, intrinsics)
  n = size(found.figures, 2);
  figures = num2cell(found.figures);
  failed = ~cellfun('isempty', found.identifier);
  poses = pose_structs([found.steps(4:15, :), found.pose, found.alternative(2:13, found.has_alternative)]);
  num_steps = size(found.steps, 2);
  finals = poses(num_steps + (1:n));
  others = struct('pose', poses(num_steps + n + 1:end), 'rms', num2cell(found.alternative(1, found.has_alternative)));
  found.alternative = cell(1, n);
  found.alternative(found.has_alternative) = num2cell(others);
  found.pose = finals;
  found.history = mat2cell(steps_of(found.steps, poses(1:num_steps)), 1, found.num_steps);
  found.message = repeated(found.message);
  found.points = completed(found.points, points);
  found.observations = completed(found.observations, observations);
  found.intrinsics = completed(found.intrinsics, intrinsics);
  infos = num2cell(infos_of(found, figures));
  for k = find(~found.is_found & found.is_estimate)
    infos{k} = struct('num_trials', found.search(1, k), 'num_trials_needed', found.search(2, k), ...
                      'num_inliers', found.search(3, k));
  end
  for k = find(~found.is_found & ~found.is_estimate & ~failed)
    infos{k} = struct('iteration', figures{8, k}, 'rms', found.history{k}.rms, 'turn', found.history{k}.turn, ...
                      'shift', found.history{k}.shift);
  end
  infos(failed) = {[]};
  written = found.written;
  written(found.is_struct) = finals(found.is_struct);
  written(found.is_start) = starts(found.is_start);
  figures(1:3, ~found.is_found) = {NaN};
  texts = cell(2, n);
  texts(:) = {''};
  texts(:, failed) = [found.message(failed); found.identifier(failed)];
  rows = struct('pose', written, 'info', infos, 'exitflag', figures(1, :), 'rms_before', figures(2, :), ...
                'rms_after', figures(3, :), 'error', texts(1, :), 'identifier', texts(2, :), 'state', found.state);
end

% A cell of structs of kelvane_pose, from columns with the rotation's nine elements and the centre.
function poses = pose_structs(columns)
  n = size(columns, 2);
  rotations = mat2cell(reshape(columns(1:9, :), 3, 3 * n), 3, 3 * ones(1, n));
  centres = mat2cell(columns(10:12, :), 3, ones(1, n));
  poses = num2cell(struct('rotation', rotations, 'centre', centres, 'form', 'pose', 'frame', 'world_from_camera'));
end

function steps = steps_of(columns, poses)
  values = num2cell(columns(1:3, :));
  steps = struct('pose', poses, 'rms', values(1, :), 'turn', values(2, :), 'shift', values(3, :));
end

function infos = infos_of(found, figures)
  n = size(figures, 2);
  covariances = mat2cell(reshape(found.covariance, 6, 6 * n), 6, 6 * ones(1, n));
  infos = struct('exitflag', figures(1, :), 'message', found.message, 'rms_before', figures(2, :), ...
                 'rms_after', figures(3, :), 'rms_plain_before', figures(4, :), 'rms_plain_after', figures(5, :), ...
                 'rms_inliers_before', figures(6, :), 'rms_inliers_after', figures(7, :), 'iterations', figures(8, :), ...
                 'residuals', found.residuals, 'history', found.history, 'covariance', covariances, ...
                 'noise_sigma', figures(9, :), 'inliers', found.inliers, 'num_inliers', figures(10, :), ...
                 'loss_scale', figures(11, :), 'num_behind', figures(12, :), 'num_left_out', figures(13, :), ...
                 'pose', found.pose, 'alternative', found.alternative, 'points', found.points, ...
                 'observations', found.observations, 'intrinsics', found.intrinsics);
  if any(found.is_estimate)
    trials = num2cell(found.search([1 4], :));
    [infos.num_trials] = trials{1, :};
    [infos.log10_chance] = trials{2, :};
  end
end

% A text that is the same as the one before it comes empty.
function texts = repeated(texts)
  is_new = ~cellfun('isempty', texts);
  is_new(1:min(1, end)) = true;
  different = texts(is_new);
  texts = different(cumsum(is_new));
end

function arrays = completed(arrays, given)
  same = cellfun('isempty', arrays);
  arrays(same) = given(same);
end
