% SPDX-License-Identifier: BSD-3-Clause
% Problems that had no start with those that were estimated, rows with an info each; what the estimates threw out is not seen.
% Their options are told of the form that the start would have had.
function problems = with_estimates(problems, estimates)
  for k = 1:numel(problems)
    info = estimates(k).info;
    problems(k).start = info.pose;
    problems(k).points = info.points;
    problems(k).observations = info.observations;
    problems(k).observations(:, ~info.inliers) = NaN;
    options = problems(k).options;
    if isempty(options.OutputForm) && ~isempty(options.PoseForm)
      options.OutputForm = options.PoseForm;
      if isempty(options.OutputFrame)
        options.OutputFrame = options.PoseFrame;
      end
    end
    options.PoseForm = [];
    options.PoseFrame = [];
    problems(k).options = options;
  end
end
