% SPDX-License-Identifier: BSD-3-Clause
% What is known beside the pixels: covariances of observations, a prior of the pose, fixed directions, and the other tilt of a
% flat target.

%!function [pose, info] = refined(scene, varargin)
%!  [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, varargin{:});
%!endfunction

%!function scene = usual_scene()
%!  scene = noisy_scene([700 0 320; 0 650 240; 0 0 1], 5);
%!endfunction

%!function r = residuals_of_turn(w, scene)  % of the start turned by w about axes of the camera
%!  pose = scene.start;
%!  pose.rotation = pose.rotation * expm([0 -w(3) w(2); w(3) 0 -w(1); -w(2) w(1) 0]);
%!  r = (scene.pixels - kelvane_project(pose, scene.points, scene.K))(:);
%!endfunction

%!test  % a known centre: the rotation alone, as another program finds it
%! scene = usual_scene();
%! scene.start.centre = scene.truth.centre;
%! [pose, info] = refined(scene, 'Fixed', 'centre');
%! options = optimset('TolX', 1e-14, 'TolFun', 1e-14, 'MaxIter', 500);
%! w = fminunc(@(w) sum(residuals_of_turn(w, scene).^2), zeros(3, 1), options);
%! turned = scene.start.rotation * expm([0 -w(3) w(2); w(3) 0 -w(1); -w(2) w(1) 0]);
%! assert(pose.rotation, turned, 1e-6);
%! assert(pose.centre, scene.start.centre);
%! assert(sum(residuals_of_turn(w, scene).^2) >= 30 * info.rms_after^2 * (1 - 1e-12));
%! assert(info.covariance(4:6, :), zeros(3, 6));
%! assert(rank(info.covariance(1:3, 1:3)), 3);

%!test  % words are columns, alone and together, in any capitals
%! scene = usual_scene();
%! axes = eye(6);
%! words = {'rotation', 'gravity', 'centre', 'Height', {'height', 'gravity'}};
%! columns = {1:3, 1:2, 4:6, 6, [6 1 2]};
%! for k = 1:numel(words)
%!   assert(isequal(refined(scene, 'Fixed', words{k}), refined(scene, 'Fixed', axes(:, columns{k}))));
%! end
%! pose = refined(scene, 'Fixed', 'gravity');
%! assert(pose.rotation(3, :), scene.start.rotation(3, :), 1e-14);
%! assert(norm(pose.rotation - scene.start.rotation) > 1e-3);

%!test  % pages for each point, one page for all, and a weight: the same where they say the same
%! scene = usual_scene();
%! sigma = linspace(0.5, 2, 30);
%! pages = eye(2) .* reshape(sigma.^2, 1, 1, 30);
%! [pose, info] = refined(scene, 'ObservationCovariance', pages);
%! [expected, other] = refined(scene, 'Weights', 1 ./ sigma.^2, 'NoiseSigma', 1);
%! assert({pose.rotation, pose.centre}, {expected.rotation, expected.centre}, 1e-10);
%! assert(info.noise_sigma, 1);
%! assert(info.covariance, other.covariance, 1e-8 * norm(other.covariance));
%! assert(info.rms_after, other.rms_after, -1e-12);
%! [pose, info] = refined(scene, 'ObservationCovariance', [4 0.1; 0.1 2], 'NoiseSigma', 3);
%! expected = refined(scene, 'ObservationCovariance', repmat([4 0.1; 0.1 2], 1, 1, 30));
%! assert({pose.rotation, pose.centre}, {expected.rotation, expected.centre}, 1e-12);
%! assert(info.noise_sigma, 3);
%! b = kelvane_project(scene.truth, scene.points, []);
%! [pose, info] = kelvane_refine(scene.start, scene.points, b + 1e-3 * sin((1:3)' * (1:30)), [], ...
%!                               'ObservationCovariance', 1e-6 * eye(3));
%! assert(info.exitflag > 0);

%!test  % a prior in any form, of covariance or information
%! scene = usual_scene();
%! known = scene.truth;
%! C = diag([1 2 3 4 5 6] * 1e-7);
%! expected = refined(scene, 'Prior', struct('pose', known, 'covariance', C));
%! assert(norm(expected.centre - scene.truth.centre) < 5e-3);
%! pose = refined(scene, 'Prior', struct('pose', known, 'information', inv(C)));
%! assert({pose.rotation, pose.centre}, {expected.rotation, expected.centre}, 1e-9);
%! pose = refined(scene, 'prior', struct('pose', kelvane_pose(known, 'matrix4x4', 'world_from_camera'), 'covariance', C), ...
%!                'PoseFrame', 'world_from_camera');
%! assert({pose.rotation, pose.centre}, {expected.rotation, expected.centre}, 1e-9);
%! start = kelvane_pose(scene.start, 'opencv');
%! pose = kelvane_refine(start, scene.points, scene.pixels, scene.K, 'OutputForm', 'pose', ...
%!                       'Prior', struct('pose', {kelvane_pose(known, 'opencv')}, 'covariance', C), 'PoseForm', 'opencv');
%! assert({pose.rotation, pose.centre}, {expected.rotation, expected.centre}, 1e-9);

%!test  % one point does where enough is known, and what is not determined is told
%! scene = usual_scene();
%! one = @(varargin) kelvane_refine(scene.start, scene.points(:, 1), scene.pixels(:, 1), scene.K, varargin{:});
%! [~, info] = one('Prior', struct('pose', scene.truth, 'covariance', 1e-4 * eye(6)));
%! assert(info.exitflag > 0);
%! [~, info] = one('Fixed', {'centre', 'gravity'});
%! assert(info.exitflag > 0);
%! [~, info] = one('Fixed', 'gravity');
%! assert(info.exitflag, -4);

%!test  % in a batch each problem has its own, also in other processes
%! scene = usual_scene();
%! problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%! problems = repmat(problem, 1, 4);
%! own = {[], struct('Fixed', 'height'), struct('Prior', struct('pose', scene.truth, 'covariance', 1e-6 * eye(6))), ...
%!        struct('ObservationCovariance', [1 0.9; 0.9 -1])};
%! [problems.options] = own{:};
%! results = kelvane_batch(problems, 'Progress', 'off');
%! for k = 1:3
%!   options = own(k)(~isempty(own{k}));
%!   [pose, info] = refined(scene, options{:});
%!   assert(isequaln({results(k).pose, results(k).info}, {pose, info}));
%! end
%! assert(results(4).error, 'ObservationCovariance is not positive definite.');
%! if has_parallel()
%!   others = kelvane_batch(problems, 'Progress', 'off', 'Processes', 2);
%!   assert(isequaln(others, results));
%! end

%!test  % what cannot be is told by name and place, and nothing is refined
%! scene = usual_scene();
%! message = @(varargin) message_of(@() refined(scene, varargin{:}));
%! C = repmat(eye(2), 1, 1, 30);
%! bad = C; bad(1, 2, 7) = 0.5;
%! assert(message('ObservationCovariance', bad), 'ObservationCovariance(:, :, 7) is not symmetric.');
%! bad = C; bad(:, :, 30) = [1 2; 2 1];
%! assert(message('ObservationCovariance', bad), 'ObservationCovariance(:, :, 30) is not positive definite.');
%! bad = C; bad(2, 1, 3) = NaN;
%! assert(message('ObservationCovariance', bad), 'ObservationCovariance(2, 1, 3) is NaN. All of it must be finite numbers.');
%! assert(message('ObservationCovariance', zeros(2)), 'ObservationCovariance is not positive definite.');
%! assert(message('ObservationCovariance', C(:, :, 1:29)), ...
%!        'ObservationCovariance must be 2 x 2, or 2 x 2 x 30, a page for each point; this is 2 x 2 x 29.');
%! assert(message('ObservationCovariance', C, 'Weights', ones(1, 30)), ...
%!        'ObservationCovariance takes the place of weights: only one of both can be given.');
%! prior = @(varargin) message('Prior', struct('pose', scene.truth, varargin{:}));
%! fields = 'Prior must be a struct with the fields pose and either covariance or information.';
%! assert({prior(), prior('covariance', eye(6), 'information', eye(6)), message('Prior', 5)}, {fields, fields, fields});
%! assert(prior('covariance', eye(5)), 'Prior.covariance must be 6 x 6; this is 5 x 5.');
%! assert(prior('covariance', zeros(6)), ['Prior.covariance is not positive definite. What is known for sure belongs in the ' ...
%!        'fixed directions.']);
%! assert(prior('covariance', eye(6) + triu(ones(6), 1) / 9), 'Prior.covariance is not symmetric.');
%! assert(prior('information', -eye(6)), 'Prior.information has a negative eigenvalue: where nothing is known, information is 0.');
%! assert(prior('information', Inf(6)), 'Prior.information(1, 1) is Inf. All of it must be finite numbers.');
%! assert(message('Prior', struct('pose', 1, 'covariance', eye(6)))(1:11), 'Prior.pose:');
%! assert(message('Fixed', 'hight'), ['''hight'' is not a kind of Fixed. Did you mean ''height''? There are ''rotation'', ' ...
%!        '''gravity'', ''centre'', and ''height''.']);
%! assert(message('Fixed', {'rotation', 'centre'}), 'Fixed leaves nothing to refine: all six directions are fixed.');
%! assert(message('Fixed', eye(3)), 'Fixed must be 6 x m, a direction [w; dt] in each column; this is 3 x 3.');
%! assert(message('Fixed', zeros(6, 1)), 'Fixed: a direction of length 0 fixes nothing.');
%! assert(message('Fixed', [NaN; ones(5, 1)]), 'Fixed(1, 1) is NaN. All of it must be finite numbers.');

%!test  % real boards, near enough to the camera that the cost has one minimum (see pose_refinement/alternative)
%! for id = 1:6
%!   view = chessboard_view(id);
%!   [~, info] = kelvane_refine(view.start{1}, view.points, view.pixels, view.intrinsics, 'PoseFrame', 'world_from_camera');
%!   assert(info.exitflag > 0);
%!   assert(isempty(info.alternative));
%! end

%!test  % two points lie as their observations do, and a wrong prior is told whatever its size
%! scene = usual_scene();
%! two = @(points, pixels) kelvane_refine(scene.start, points, pixels, scene.K, 'Fixed', 'centre');
%! expected = two(scene.points(:, 1:2), scene.pixels(:, 1:2));
%! assert(isequal(two(scene.points(:, 1:2)', scene.pixels(:, 1:2)'), expected));
%! assert(~isequal(two(scene.points(:, 1:2), scene.pixels(:, 1:2)'), expected));
%! message = @(prior) message_of(@() refined(scene, 'Prior', prior));
%! fields = 'Prior must be a struct with the fields pose and either covariance or information.';
%! assert(message(struct('pose', {scene.truth, scene.truth}, 'covariance', eye(6))), fields);
%! v = single([1; 2; 3; 4; 5; 6]);
%! [~, info] = refined(scene, 'Prior', struct('pose', scene.truth, 'information', v * v' / 7));
%! assert(info.exitflag > 0);
