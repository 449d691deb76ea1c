% KELVANE_REFINE  Refine a camera pose until it is still, with weights, robust losses and the uncertainty of the result.
%
%   pose = kelvane_refine(pose0, points, observations, intrinsics)
%   pose = kelvane_refine(pose0, points, observations, intrinsics, name, value, ...)
%   [pose, info] = kelvane_refine(...)
%
%   Minimises the sum, over the points, of the squared distance between where the camera sees a point and where it was
%   observed. A pose worse than pose0 is never returned.
%
%   Inputs: finite real numbers of any class; an observation may be NaN.
%     pose0         where to start: the struct of kelvane_pose, or any of its forms, named by 'PoseForm' and 'PoseFrame'; or
%                   [], see below
%     points        3 x N or N x 3: world points, N of 3 or more; 3 x 3 lie as the observations do, in columns or in rows
%     observations  2 x N or N x 2: pixels (u, v); or 3 x N or N x 3: directions to the points in the camera frame, of any
%                   length but zero; 3 x 3 are columns. Points may then lie anywhere around the camera. A point with a
%                   NaN in its observation was not seen and is left out.
%     intrinsics    of pixels: a camera of kelvane_camera, with its lens; [f cx cy] or [fx fy cx cy], pixels; a 3 x 3 K =
%                   [fx s cx; 0 fy cy; 0 0 1], or a multiple of it; or MATLAB's cameraIntrinsics or cameraParameters, whose
%                   distortion counts. Of directions: []. The cost is in the pixels that were measured, through the lens and
%                   for every K. A point that lies beyond where the lens folds back, as pose0 sees it, is left out.
%
%   Without a pose0, [], kelvane_estimate finds it first, with its own defaults. Its inliers are what is refined then: the
%   other points are left out. Where the estimate is in doubt, its exitflag below 0, it is what comes back, with its message.
%
%   Options, by name in any capitals, or as a struct:
%     'PoseForm'           form of pose0, see kelvane_pose; needed where its size leaves a doubt
%     'PoseFrame'          'camera_from_world' or 'world_from_camera', needed where the form implies none
%     'OutputForm'         form of pose, by default that of pose0
%     'OutputFrame'        frame of pose, by default that of pose0, or the one that OutputForm implies
%     'MaxIterations'      default 100; those at the other tilt of a flat target do not count
%     'StepTolerance'      stop when a step turns by less than this, in radians, and shifts by less than this part of the
%                          distance of the points (root mean square); default 1e-9
%     'FunctionTolerance'  stop when the cost decreases by less than this part of it; default 0, never
%     'Weights'            factors of squared residuals: one for each point, or one for each equation in the shape of the
%                          observations, or in a vector u1, v1, u2, ...; default 1. The inverse variance is the one to give.
%                          0 leaves out.
%     'ObservationCovariance'  in place of weights, the covariance of each observation: d x d x N, a page for each point, or
%                          d x d for all; d is 2 (pixels squared) or 3 (of directions at unit length, radians squared, of
%                          which the part across the direction counts). RMS and residual lengths are then in standard
%                          deviations.
%     'Prior'              a Gaussian on the pose: struct with the fields pose, in the form of pose0 or as struct of
%                          kelvane_pose, and covariance or information, its inverse, 6 x 6, of [w; dt] as info.covariance
%                          from that pose on. A covariance must be positive definite, information may leave directions open.
%                          Give NoiseSigma with it: without, an observation counts as uncertain by 1 pixel or 1 radian.
%     'Fixed'              directions in which the pose is known and stays as in pose0: words, one or a cell of them, or a
%                          6 x m matrix with a direction [w; dt] in each column, w a turn about axes of the world (rad) and dt
%                          a shift (world unit). The pose is pose0, turned by expm of the cross matrix of w and shifted by
%                          dt, with [w; dt] across all columns. Words: 'centre'; 'height', the centre along the world's z;
%                          'gravity', the direction of the world's z as the camera sees it, about which it may turn; 'rotation'
%     'Loss'               'none' (default), 'huber', 'cauchy' or 'tukey': what bounds the pull of outliers
%     'LossScale'          length of a (weighted) residual from which it counts less; by default the one that keeps 95 % of
%                          the information in normal noise, whose size the median of the residuals tells; of no effect
%                          without a loss
%     'NoiseSigma'         standard deviation of each coordinate of an observation with weight 1, for the covariance; by
%                          default from the residuals, or 1 with ObservationCovariance or Prior, which have a unit themselves
%     'Display'            'off' (default), 'iter' or 'final'
%     'OutputFcn'          stop = fcn(pose, values, state), state 'init', 'iter' or 'done', called with the pose in its
%                          output form; values has iteration, rms, turn (rad) and shift (world unit); true stops
%
%   Outputs:
%     pose  the refined pose
%     info  struct with the fields
%       exitflag       above 0: converged. 1 StepTolerance, 2 limit of rounding, 3 FunctionTolerance. Otherwise: 0
%                      MaxIterations, -1 OutputFcn, -2 no part of the step lowers the cost, -3 the start has no finite
%                      cost, -4 the points do not determine the pose, -5 more than half of the weight lies behind the
%                      camera, -6 ambiguous: converged, but the other tilt of a flat target fits as well; without a pose0
%                      also -8, no consensus
%       message        the same in words; without a pose0 also how many points agreed
%       rms_before, rms_after  square root of the cost of a point on average, of pose0 and pose, in pixels or radians; with a
%                      loss both at loss_scale, with which history is told too. Display and OutputFcn tell it as it
%                      is on the way, while the scale still comes down.
%       rms_plain_before, rms_plain_after      the same without the loss, and without what a prior adds to the cost
%       rms_inliers_before, rms_inliers_after  the same without the loss, of the inliers
%       iterations     steps made
%       residuals      2 x N or 3 x N, observed minus predicted (directions at unit length), without weights; NaN where a
%                      point is left out
%       history        1 x (iterations + 1) structs: pose (struct), rms, turn (rad) and shift (world unit) of each step; rms
%                      may rise at one, the half turn to the mirrored pose where the points came to lie behind the camera
%       covariance     6 x 6, of [w; dt]: R * expm of the cross matrix of w, rotation vector in the camera frame, radians,
%                      and centre + dt, world unit. Inf where undetermined, NaN with as many equations as unknowns.
%       noise_sigma    standard deviation of one coordinate of an observation with weight 1
%       inliers        1 x N, residuals within 3 sigma of what LossScale takes for noise; without a loss true for all that
%                      are not left out
%       num_inliers    how many they are
%       loss_scale     the scale that was used, Inf without a loss
%       num_behind     pixels' points with the camera's back to them
%       num_left_out   points without an observation, a weight or an image in the lens
%       pose           the refined pose as struct of kelvane_pose
%       alternative    where the points are flat to within the noise, and tilted the other way lead to another minimum of the
%                      cost: struct with its pose (struct of kelvane_pose) and rms; otherwise []
%       points, observations, intrinsics  as they were read: 3 x N, 2 x N or 3 x N, and 3 x 3, [] or a camera with a lens
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> K = [500 0 320; 0 510 240; 0 0 1];
%     >> pixels = kelvane_project([0 0 0, 0.1 -0.2 -4], points, K, 'PoseFrame', 'world_from_camera');
%     >> start = [0.02 -0.03 0.01, 0.2 -0.1 -3.8];
%     >> [pose, info] = kelvane_refine(start, points, pixels, K, 'PoseFrame', 'world_from_camera');
%     >> fprintf('centre (%.6f, %.6f, %.6f)\n', pose(4:6))
%     centre (0.100000, -0.200000, -4.000000)
%     >> fprintf('RMS %.1f before, %.1f after\n', info.rms_before, info.rms_after)
%     RMS 8.1 before, 0.0 after
%     >> info.exitflag > 0
%     ans = 1
%
%
%   See also kelvane_estimate, kelvane_camera, kelvane_pose, kelvane_project, kelvane_batch, kelvane_plot, kelvane_mex.

% SPDX-License-Identifier: BSD-3-Clause
% The door to the refinement of kelvane_engine, which the user can interrupt and watch.
function [pose, info] = kelvane_refine(pose0, points, observations, intrinsics, varargin)
  if nargin < 4
    error('kelvane:inputs', 'kelvane_refine needs pose0, points, observations and intrinsics ([] for bearing vectors).');
  end
  options = refine_options(varargin);
  if isempty(pose0)
    [pose, info] = refined_estimate(points, observations, intrinsics, options);
    return;
  end
  [pose0, options.PoseForm] = plain_pose(pose0, options.PoseForm);
  form = options.OutputForm;
  if isempty(form)
    form = options.PoseForm;
  end
  inputs = {{pose0}, {points}, {observations}, {plain_object(intrinsics, 'cameraIntrinsics')}};
  is_watched = ~isempty(options.OutputFcn) || strcmp(options.Display, 'iter');
  num_shown = 0;
  [result, is_over] = refined(inputs, options, [], is_watched);
  while ~is_over
    if is_watched
      options.Stop = show(written_pose(result.pose, form), result.info, options);
      num_shown = num_shown + 1;
    end
    [result, is_over] = refined(inputs, options, result.state, is_watched);
  end
  pose = written_pose(result.pose, form);
  info = result.info;
  if is_watched
    show_rest(pose, info, num_shown, options);
  end
  if ~strcmp(options.Display, 'off')
    fprintf('%s\nRMS %.6g before, %.6g after %d iteration%s.\n', info.message, info.rms_before, info.rms_after, ...
            info.iterations, repmat('s', 1, info.iterations ~= 1));
  end
end

% With an estimate for a start; what it throws out is not seen.
function [pose, info] = refined_estimate(points, observations, intrinsics, options)
  estimate = estimated(points, observations, intrinsics, options);
  pose = estimate.pose;
  info = estimate.info;
  if info.exitflag > 0
    problem = struct('start', [], 'points', [], 'observations', [], 'options', options);
    problem = with_estimates(problem, estimate);
    [pose, info] = kelvane_refine(problem.start, problem.points, problem.observations, intrinsics, problem.options);
    info = with_estimate_told(info, estimate.info);
  end
end

% As far as kelvane_engine comes in 0.2 s, so that Ctrl-C has its chance; one iteration where each is watched.
function [result, is_over] = refined(inputs, options, state, is_watched)
  found = call_engine('refine', inputs{:}, options, {state}, 0.2 * ~is_watched);
  result = refined_rows(found, inputs{:});
  if ~isempty(result.error)
    error(struct('message', result.error, 'identifier', result.identifier));
  end
  is_over = isempty(result.state);
end

% Shows a step as Display and OutputFcn ask for it. True where OutputFcn wants to stop.
function stop = show(pose, values, options)
  if strcmp(options.Display, 'iter')
    if values.iteration == 0
      fprintf('%9s %14s %14s %14s\n', 'iteration', 'RMS', 'turn (rad)', 'shift');
    end
    fprintf('%9d %14.6g %14.3g %14.3g\n', values.iteration, values.rms, values.turn, values.shift);
  end
  states = {'init', 'iter'};
  stop = asked_to_stop(pose, values, states{1 + (values.iteration > 0)}, options);
end

function stop = asked_to_stop(pose, values, state, options)
  stop = ~isempty(options.OutputFcn) && isequal(options.OutputFcn(pose, values, state), true);
end

% The steps that came with the end, and the end. It is too late to stop.
function show_rest(pose, info, num_shown, options)
  for k = num_shown:info.iterations
    entry = info.history(k + 1);
    show(pose, struct('iteration', k, 'rms', entry.rms, 'turn', entry.turn, 'shift', entry.shift), options);
  end
  last = info.history(end);
  values = struct('iteration', info.iterations, 'rms', info.rms_after, 'turn', last.turn, 'shift', last.shift);
  asked_to_stop(pose, values, 'done', options);
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

%!test  % three points, in columns or in rows, are enough
%! [points, K, all_pixels, truth] = scene();
%! some = kelvane_refine(near(truth), points, all_pixels, K, 'Weights', [0 0 0 1 1 1]);
%! pose = kelvane_refine(near(truth), points(:, 4:6), all_pixels(:, 4:6), K);
%! assert(kelvane_project(pose, points(:, 4:6), K), all_pixels(:, 4:6), 1e-7);
%! assert({some.rotation, some.centre}, {pose.rotation, pose.centre}, 1e-9);
%! points = points(:, 4:6);
%! pixels = kelvane_project(truth, points, K);
%! pose = kelvane_refine(near(truth), points, pixels, K);
%! assert(kelvane_project(pose, points, K), pixels, 1e-7);
%! assert(kelvane_refine(near(truth), points', pixels', K).centre, pose.centre);

%!demo
%! % pixels with noise of half a pixel, three of them wrong, and a start that is a little off
%! k = 1:40;
%! points = [sin(7 * k); cos(11 * k); sin(13 * k + 1)];
%! K = [500 320 240];
%! truth = kelvane_pose([0.3 -0.5 0.2, 1.8 -0.2 -3.6], 'rotation_vector', 'world_from_camera');
%! pixels = kelvane_project(truth, points, K) + 0.5 * [sin(17 * k); cos(19 * k)];
%! pixels(:, 1:3) = pixels(:, [2 3 1]);
%! start = kelvane_pose([0.35 -0.45 0.22, 1.7 -0.3 -3.8], 'rotation_vector', 'world_from_camera');
%! [pose, info] = kelvane_refine(start, points, pixels, K, 'Loss', 'tukey', 'Display', 'iter');
%! kelvane_plot(info)
