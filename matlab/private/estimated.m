% SPDX-License-Identifier: BSD-3-Clause
% A pose without a start as a row of refined_rows, by options of kelvane_estimate, or of kelvane_refine, which leave the search
% its defaults. kelvane_engine comes back after 0.2 s at most, so that Ctrl-C has its chance; after each round of trials where
% these are shown. Its errors are this one's.
function row = estimated(points, observations, intrinsics, options)
  inputs = {{points}, {observations}, {plain_object(intrinsics, 'cameraIntrinsics')}};
  is_shown = strcmp(options.Display, 'iter');
  if is_shown
    fprintf('%9s %9s %9s\n', 'trials', 'of about', 'inliers');
  end
  row.state = [];
  is_over = false;
  while ~is_over
    found = call_engine('estimate', inputs{:}, options, {row.state}, 0.2 * ~is_shown, 0);
    row = refined_rows(found, {[]}, inputs{:});
    if ~isempty(row.error)
      error(struct('message', row.error, 'identifier', row.identifier));
    end
    is_over = isempty(row.state);
    if is_shown && ~is_over
      fprintf('%9d %9d %9d\n', row.info.num_trials, row.info.num_trials_needed, row.info.num_inliers);
    end
  end
  form = options.OutputForm;
  if isempty(form) && isfield(options, 'PoseForm')
    form = options.PoseForm;
  end
  row.pose = written_pose(row.pose, form);
  if ~strcmp(options.Display, 'off')
    fprintf('%s\n%d of %d points within %.4g after %d trials, RMS %.6g.\n', row.info.message, row.info.num_inliers, ...
            numel(row.info.inliers), largest_residual(row.info), row.info.num_trials, row.info.rms_after);
  end
end

function length = largest_residual(info)
  length = max([0, sqrt(sum(info.residuals(:, info.inliers).^2, 1))]);
end
