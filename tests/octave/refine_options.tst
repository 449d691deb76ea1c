% SPDX-License-Identifier: BSD-3-Clause
% kelvane_refine: options, layouts of weights, a start that is estimated, and what is refused.

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

%!test  % names in any capitals, and structs of options
%! [points, K, pixels, truth] = scene();
%! for form = {'COLMAP', 'colmap', 'ColMap'}
%!   [pose, info] = kelvane_refine(near(truth), points, pixels, K, struct('outputform', form{1}), 'maxiterations', 2);
%!   assert(size(pose), [1, 2]);
%!   assert(info.iterations, 2);
%! end

%!test  % without a start it is estimated; what that throws out is left out, and doubts come back as they are
%! k = 1:40;
%! points = [sin(7 * k); cos(11 * k); sin(13 * k + 1)];
%! [~, K, ~, truth] = scene();
%! pixels = kelvane_project(truth, points, K) + 0.5 * [sin(17 * k); cos(19 * k)];
%! pixels(:, 1:20) = pixels(:, [2:20, 1]);
%! [pose, info] = kelvane_refine([], points, pixels, K, 'Weights', 1 + mod(k, 3), 'PoseForm', 'colmap');
%! estimate = kelvane_estimate(points, pixels, K);
%! [expected, alone] = kelvane_refine(estimate, points(:, 21:40), pixels(:, 21:40), K, 'Weights', 1 + mod(21:40, 3));
%! assert(size(pose), [1, 2]);
%! assert({info.pose.rotation, info.pose.centre}, {expected.rotation, expected.centre}, 1e-9);
%! assert(find(info.inliers), 21:40);
%! assert(info.num_left_out, 20);
%! assert(info.observations, pixels);
%! assert(info.message, ['Started from an estimate with which 20 of 40 points agree. ', alone.message]);
%! [pose, info] = kelvane_refine([], points(:, 1:3), pixels(:, 1:3), K, 'OutputForm', 'rotation_vector', 'Loss', 'huber');
%! assert(info.exitflag, -4);
%! assert(all(isnan(pose)) && numel(pose) == 6);
%! text = evalc('kelvane_refine([], points, pixels, K, ''Display'', ''final'');');
%! assert(numel(strfind(text, "\n")), 4);
%! fail('kelvane_refine([], points, pixels, K, ''Weights'', 1:4)', 'Weights must be one for each of the 40 points');

%!error <Fixed needs pose0> kelvane_refine([], rand(3, 5), rand(2, 5), [1 0 0], 'Fixed', 'height')
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
%!error <'RotationType' is no option of kelvane_refine any more.*kelvane_mex has all ten> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'RotationType', 2)
%!error <'jacobian' is no option of kelvane_refine any more> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], struct('jacobian', 'analytic'))
%!error <as 'PoseFrame' or third input of kelvane_pose> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0])
%!error <The Display must be a text.*class cell> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'Display', {})
%!error <The Display must be a text.*class cell> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'Display', {'off'})
%!error <The Display must be a text.*class double> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'Display', [])
%!error <The pose must be one struct; this is an array of 2> kelvane_refine(repmat(struct('rotation', eye(3), 'centre', [0 0 0]), 1, 2), rand(3, 5), rand(2, 5), [1 0 0])
%!error <OutputFcn must be a function handle> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'OutputFcn', 'f')
%!error <Say which way the pose> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0])
%!error <2 x 2 observations may be two columns or two rows> kelvane_refine(eye(4), rand(3, 2), rand(2, 2), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <Three points are the least> kelvane_refine(eye(4), rand(3, 1), rand(2, 1), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <observations\(2, 3\) is Inf> kelvane_refine(eye(4), rand(3, 3), [1 2 3; 4 5 Inf], [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <Three points> kelvane_refine(eye(4), rand(3, 3), [1 2 3; 4 5 NaN], [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <points must be a matrix; this is 3 x 2 x 2> kelvane_refine(eye(4), rand(3, 2, 2), rand(2, 4), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <points must be 3 x 5 or 5 x 3> kelvane_refine(eye(4), rand(3, 4), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <points must be 3 x 3 or 3 x 3, as there are 3> kelvane_refine(eye(4), rand(3, 4), rand(3, 2), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <With 2 x N observations the intrinsics must be \[f cx cy\], K, cameraIntrinsics or a struct of kelvane_camera> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [], 'PoseFrame', 'world_from_camera')
%!error <With 3 x N observations the intrinsics must be \[\]> kelvane_refine(eye(4), rand(3, 5), rand(3, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
%!error <observations\(:, 2\) has the length 0> kelvane_refine(eye(4), rand(3, 3), [1 0 1; 1 0 2; 1 0 3], [], 'PoseFrame', 'world_from_camera')
%!error <Weights must be one for each of the 5 points> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', 1:4)
%!error <Weights must not be negative; the least is -1> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', [1 1 1 1 -1])
%!error <with a weight above 0> kelvane_refine(eye(4), rand(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera', 'Weights', [1 1 0 0 0])
%!error <All points lie at the camera centre> kelvane_refine(eye(4), zeros(3, 5), rand(2, 5), [1 0 0], 'PoseFrame', 'world_from_camera')
