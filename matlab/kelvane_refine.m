% KELVANE_REFINE  Refine a camera pose until it is still, with weights, robust losses and the uncertainty of the result.
%
%   pose = kelvane_refine(pose0, points, observations, intrinsics)
%   pose = kelvane_refine(pose0, points, observations, intrinsics, name, value, ...)
%   [pose, info] = kelvane_refine(...)
%
%   Minimises the sum, over the points, of the squared distance between where the camera sees a point and where it was
%   observed. A pose worse than pose0 is never returned.
%
%   Inputs: real, finite numbers of any class.
%     pose0         where to start: the struct of kelvane_pose, or any of its forms, named by 'PoseForm' and 'PoseFrame'
%     points        3 x N or N x 3: world points, N of 3 or more; 3 x 3 lie as the observations do, in columns or in rows
%     observations  2 x N or N x 2: pixels (u, v); or 3 x N: directions to the points in the camera frame, of any length
%                   but zero. Points may then lie anywhere around the camera.
%     intrinsics    of pixels: [f cx cy], pixels; a 3 x 3 K = [fx s cx; 0 fy cy; 0 0 1], or a multiple of it; or MATLAB's
%                   cameraIntrinsics without distortion, which needs undistorted observations. Of directions: [].
%                   The cost is in pixels for every K, with unequal focal lengths and skew as well.
%
%   Options, by name in any capitals, or as a struct:
%     'PoseForm'           form of pose0, see kelvane_pose; needed where its size leaves a doubt
%     'PoseFrame'          'camera_from_world' or 'world_from_camera', needed where the form implies none
%     'OutputForm'         form of pose, by default that of pose0
%     'OutputFrame'        frame of pose, by default that of pose0, or the one that OutputForm implies
%     'RotationType'       number or name of kelvane_types, or 'rotation vector' (default), 'axis and angle', 'quaternion'
%     'MaxIterations'      default 100; each is one call of kelvane_mex
%     'StepTolerance'      stop when a step turns by less than this, in radians, and shifts by less than this part of the
%                          distance of the points (root mean square); default 1e-9
%     'FunctionTolerance'  stop when the cost decreases by less than this part of it; default 0, never
%     'Jacobian'           'analytic' (default), or 'finite-difference', which ends beside the optimum where residuals are
%                          left, often with exit flag -2
%     'Weights'            factors of squared residuals: one for each point, or one for each equation in the shape of the
%                          observations, or in a vector u1, v1, u2, ...; default 1. The inverse variance is the one to give.
%     'Loss'               'none' (default), 'huber', 'cauchy' or 'tukey': what bounds the pull of outliers
%     'LossScale'          length of a (weighted) residual from which it counts less; by default the one that keeps 95 % of
%                          the information in normal noise, whose size the median of the residuals tells; of no effect
%                          without a loss
%     'NoiseSigma'         standard deviation of each coordinate of an observation with weight 1, for the covariance; by
%                          default from the residuals
%     'Display'            'off' (default), 'iter' or 'final'
%     'OutputFcn'          stop = fcn(pose, values, state), state 'init', 'iter' or 'done', called with the pose in its
%                          output form; values has iteration, rms, turn (rad) and shift (world unit); true stops
%
%   Outputs:
%     pose  the refined pose
%     info  struct with the fields
%       exitflag       above 0: converged. 1 StepTolerance, 2 limit of rounding, 3 FunctionTolerance. Otherwise: 0
%                      MaxIterations, -1 OutputFcn, -2 no part of the step lowers the cost, -3 the start has no finite
%                      cost, -4 the points do not determine the pose
%       message        the same in words
%       rms_before, rms_after  square root of the cost of a point on average, of pose0 and pose, in pixels or radians; with a
%                      loss both at loss_scale, with which history is told too. Display and OutputFcn tell it as it
%                      is on the way, while the scale still comes down.
%       iterations     steps made
%       residuals      2 x N or 3 x N, observed minus predicted (directions at unit length), without weights
%       history        1 x (iterations + 1) structs: pose (struct), rms, turn (rad) and shift (world unit) of each step
%       covariance     6 x 6, of [w; dt]: R * expm of the cross matrix of w, rotation vector in the camera frame, radians,
%                      and centre + dt, world unit. Inf where undetermined, NaN with as many equations as unknowns.
%       noise_sigma    standard deviation of one coordinate of an observation with weight 1
%       inliers        1 x N, residuals within 3 sigma of what LossScale takes for noise; all true without a loss
%       loss_scale     the scale that was used, Inf without a loss
%       num_behind     pixels' points with the camera's back to them
%       rotation_type  number of the type
%       pose           the refined pose as struct of kelvane_pose
%       points, observations, intrinsics  as they were read: 3 x N, 2 x N or 3 x N, and 3 x 3 or []
%
%   Example:
%     points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     K = [500 0 320; 0 510 240; 0 0 1];
%     pixels = kelvane_project([0 0 0, 0.1 -0.2 -4], points, K, 'PoseFrame', 'world_from_camera');
%     start = [0.02 -0.03 0.01, 0.2 -0.1 -3.8];
%     [pose, info] = kelvane_refine(start, points, pixels, K, 'PoseFrame', 'world_from_camera');
%     fprintf('centre (%.6f, %.6f, %.6f), RMS %.1f before, %.1f after\n', pose(4:6), info.rms_before, info.rms_after);
%   Output:
%     centre (0.100000, -0.200000, -4.000000), RMS 8.1 before, 0.0 after
%
%   See also kelvane_pose, kelvane_project, kelvane_types, kelvane_check_gradient, kelvane_mex.

% SPDX-License-Identifier: BSD-3-Clause
% The refinement of a pose from end to end.
function [pose, info] = kelvane_refine(pose0, points, observations, intrinsics, varargin)
  if nargin < 4
    error('kelvane:inputs', 'kelvane_refine needs pose0, points, observations and intrinsics ([] for bearing vectors).');
  end
  options = refine_options(varargin);
  [given, options] = read_inputs(pose0, points, observations, intrinsics, options);
  problem = scaled_problem(given.pose, given.points, given.observations, given.camera, given.weights, ...
                           robust_loss(options.Loss), given.type, strcmp(options.Jacobian, 'finite-difference'));
  states = {'init', 'iter'};
  watch = @(entry, k) progress(problem, options, entry, k, states{1 + (k > 0)});
  result = iterate(problem, options, watch);
  info = refinement_info(result, given, options);
  pose = write_pose(info.pose, options.OutputForm, options.OutputFrame);
  last = result.history(end);
  if isequal(info.pose, given.pose) && strcmp(options.OutputForm, given.form) && strcmp(options.OutputFrame, given.frame)
    pose = pose0;  % to the last bit
    last = result.history(1);
  end
  progress(result.problem, options, last, info.iterations, 'done');
  if ~strcmp(options.Display, 'off')
    fprintf('%s\nRMS %.6g before, %.6g after %d iterations.\n', info.message, info.rms_before, info.rms_after, ...
            info.iterations);
  end
end

function [given, options] = read_inputs(pose0, points, observations, intrinsics, options)
  [given.pose, given.form, given.frame] = pose_of_input(pose0, options);
  [given.observations, in_rows] = read_observations(observations);
  [dimension, n] = size(given.observations);
  given.points = read_points(points, n, in_rows);
  given.camera = read_intrinsics(intrinsics);
  if given.camera.bearing ~= (dimension == 3)
    wanted = {'[f cx cy], K or cameraIntrinsics', '[]'};
    error('kelvane:intrinsics', 'With %d x N observations the intrinsics must be %s.', dimension, wanted{dimension - 1});
  end
  given.weights = read_weights(options.Weights, dimension, n);
  given.type = read_type(options.RotationType, given.camera.bearing);
  if isempty(options.OutputForm)
    options.OutputForm = given.form;
  end
  if isempty(options.OutputFrame) && (strcmp(options.OutputForm, given.form) || isempty(implied_frame(options.OutputForm)))
    options.OutputFrame = given.frame;
  end
  [options.OutputForm, options.OutputFrame] = form_and_frame(options.OutputForm, options.OutputFrame);
end

%!function [points, K, pixels, truth] = scene()
%!  points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%!  K = [500 3 320; 0 510 240; 0 0 1];
%!  truth = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%!  pixels = kelvane_project(truth, points, K);
%!endfunction

%!function start = near(truth)
%!  start = truth;
%!  S = [0 -0.05 0.03; 0.05 0 -0.02; -0.03 0.02 0];
%!  start.rotation = truth.rotation * expm(S);
%!  start.centre = truth.centre + [0.2; -0.1; 0.3];
%!endfunction

%!test  % exact pixels lead to the true pose, whatever the layout and the class of the inputs
%! [points, K, pixels, truth] = scene();
%! for layout = {points, pixels; points', pixels; points, pixels'; sparse(points), pixels}'
%!   [pose, info] = kelvane_refine(near(truth), layout{1}, layout{2}, 2 * K);
%!   assert(pose.rotation, truth.rotation, 1e-9);
%!   assert(pose.centre, truth.centre, 1e-9);
%!   assert(info.exitflag > 0);
%!   assert(info.rms_after < 1e-9 && info.rms_before > 1);
%! end

%!test  % three points, in columns or in rows, are enough for every type
%! [points, K, all_pixels, truth] = scene();
%! for type = [0, 1, 2, -1, -2, -3]
%!   with_type = {K, 'RotationType', type};
%!   some = kelvane_refine(near(truth), points, all_pixels, with_type{:}, 'Weights', [0 0 0 1 1 1]);
%!   pose = kelvane_refine(near(truth), points(:, 4:6), all_pixels(:, 4:6), with_type{:});
%!   assert(kelvane_project(pose, points(:, 4:6), K), all_pixels(:, 4:6), 1e-7);
%!   assert({some.rotation, some.centre}, {pose.rotation, pose.centre}, 1e-9);
%! end
%! points = points(:, 4:6);
%! pixels = kelvane_project(truth, points, K);
%! pose = kelvane_refine(near(truth), points, pixels, K);
%! assert(kelvane_project(pose, points, K), pixels, 1e-7);
%! assert(kelvane_refine(near(truth), points', pixels', K).centre, pose.centre);

%!test  % weights in every layout
%! [points, K, pixels, truth] = scene();
%! pixels = pixels + [3 -2 0 1 2 -1; 0 1 -3 2 -1 1];
%! weighted = @(weights) kelvane_refine(near(truth), points, pixels, K, 'Weights', weights).centre;
%! W = reshape(linspace(0.2, 3, 12), 2, 6);
%! centre = weighted(W);
%! assert(norm(centre - weighted(flip(W))) > 1e-6);
%! assert({weighted(W'), weighted(W(:)), weighted(W(:)')}, {centre, centre, centre});
%! assert({weighted(1:6), weighted((1:6)')}, {weighted([1:6; 1:6]), weighted([1:6; 1:6])});
%! b = kelvane_project(truth, points(:, 4:6), []);  % three directions: 3 x 3 is not turned over
%! W = reshape(1:9, 3, 3);
%! [~, info] = kelvane_refine(near(truth), points(:, 4:6), b, [], 'Weights', W);
%! residuals = b - kelvane_project(near(truth), points(:, 4:6), []);
%! assert(info.rms_before, sqrt(sum(sum(W .* residuals.^2)) / 3), -1e-12);

%!test  % names in any capitals, structs of options, and every name and number of a type
%! [points, K, pixels, truth] = scene();
%! for type = {0, 'AAU', 'rotation vector', 2, 'qu', 'Quaternion', -2}
%!   [pose, info] = kelvane_refine(near(truth), points, pixels, K, struct('rotationtype', type{1}), 'maxiterations', 50);
%!   assert(pose.centre, truth.centre, 1e-9);
%! end
%! assert(info.rotation_type, -2);

%!error <needs pose0, points, observations and intrinsics> kelvane_refine(1, 2, 3)
%!error <Did you mean 'MaxIterations'> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'MaxIter', 5)
%!error <the last one has no value> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'Loss')
%!error <'hubert' is not a loss. Did you mean 'huber'> kelvane_refine(struct('rotation', eye(3), 'centre', [0 0 0]), rand(3, 5), rand(2, 5), [1 0 0], 'Loss', 'hubert')
%!error <StepTolerance must be a number of 0 or more> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'StepTolerance', NaN)
%!error <LossScale must be a number above 0> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'LossScale', 0)
%!error <LossScale must be a number above 0 and finite> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'LossScale', Inf)
%!error <MaxIterations must be a number of 0 or more> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'MaxIterations', -1)
%!error <MaxIterations must be a number of 0 or more> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'MaxIterations', [])
%!error <MaxIterations must be a number of 0 or more> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'MaxIterations', 'a')
%!error <MaxIterations must be a whole number; this is 2.5> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'MaxIterations', 2.5)
%!error <options come in one struct; this is an array of 2> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], struct('Loss', {'huber', 'none'}))
%!error <Did you mean 'rotation vector'> kelvane_refine([eye(3), [0; 0; 9]], rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'camera_from_world', 'RotationType', 'rotation_vector')
%!error <as 'PoseFrame' or third input of kelvane_pose> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0])
%!error <OutputFcn must be a function handle> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'OutputFcn', 'f')
%!error <Say which way the pose> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0])
%!error <2 x 2 observations may be two columns or two rows> kelvane_refine(eye(4), rand(3, 2), rand(2, 2), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <Three points are the least> kelvane_refine(eye(4), rand(3, 1), rand(2, 1), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <observations\(2, 3\) is NaN> kelvane_refine(eye(4), rand(3, 3), [1 2 3; 4 5 NaN], [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <points must be 3 x 5 or 5 x 3> kelvane_refine(eye(4), rand(3, 4), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <points must be 3 x 3 or 3 x 3, as there are 3> kelvane_refine(eye(4), rand(3, 4), rand(3, 2), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <With 2 x N observations the intrinsics must be \[f cx cy\]> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [], 'PoseFrame', 'world_from_camera')
%!error <With 3 x N observations the intrinsics must be \[\]> kelvane_refine(eye(4), rand(3, 5), rand(3, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <observations\(:, 2\) has the length 0> kelvane_refine(eye(4), rand(3, 3), [1 0 1; 1 0 2; 1 0 3], [], 'PoseFrame', 'world_from_camera')
%!error <the observations are bearing vectors> kelvane_refine(eye(4), rand(3, 5), rand(3, 5), [], 'PoseFrame', 'world_from_camera', 'RotationType', 2)
%!error <Weights must be one for each of the 5 points> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', 1:4)
%!error <Weights must not be negative; the least is -1> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', [1 1 1 1 -1])
%!error <with a weight above 0> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', [1 1 0 0 0])
%!error <All points lie at the camera centre> kelvane_refine(eye(4), zeros(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
