% SPDX-License-Identifier: BSD-3-Clause
% Why a refinement stopped, in words. num_behind is the number of pixels' points that the refined camera has behind it,
% num_pulling that of the points to which the loss leaves a weight.
function message = exit_message(exitflag, options, num_behind, num_pulling)
  switch exitflag
    case 1
      message = sprintf('Converged: the step is below StepTolerance = %g.', options.StepTolerance);
    case 2
      message = 'Converged: rounding hides any further decrease.';
    case 3
      message = sprintf('Converged: the decrease is below FunctionTolerance = %g.', options.FunctionTolerance);
    case 0
      message = sprintf('Not converged: stopped after MaxIterations = %g.', options.MaxIterations);
    case -1
      message = 'Not converged: stopped by OutputFcn.';
    case -2
      message = 'Not converged: no part of the step lowers the cost.';
    case -3
      message = 'Not refined: at the start a point lies in the plane of the camera centre, and its prediction is not finite.';
    case -4
      message = 'The points do not determine the pose: some direction of motion leaves all predictions as they are.';
      if num_pulling < 3
        message = sprintf('The points do not determine the pose: %d have residuals below LossScale = %g, the others no pull.', ...
                          num_pulling, options.LossScale);
      end
  end
  if num_behind > 0
    message = sprintf('%s %d points lie behind the camera: this is hardly the pose that took the picture.', message, ...
                      num_behind);
  end
end
