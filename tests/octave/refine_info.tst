% SPDX-License-Identifier: BSD-3-Clause
% Every field of info holds the number of kelvane_engine that it is named after, which are those of C++ to the last bit.

%!function scene = scene_of(loss)
%!  scene = noisy_scene([700 20 320; 0 650 240; 0 0 1], 17);
%!  scene.pixels(:, 3:8:27) = scene.pixels(:, 3:8:27) + 40;
%!  scene.pixels(1, [5, 9]) = NaN;
%!  scene.options = struct('Loss', loss, 'MaxIterations', 30);
%!endfunction

%!function info = expected_info(found)  % see mex_engine/refined.h
%!  names = {'exitflag', 'rms_before', 'rms_after', 'rms_plain_before', 'rms_plain_after', 'rms_inliers_before', ...
%!           'rms_inliers_after', 'iterations', 'noise_sigma', 'num_inliers', 'loss_scale', 'num_behind', 'num_left_out'};
%!  info = cell2struct(num2cell(found.figures), names, 1);
%!  info.message = found.message{1};
%!  info.residuals = found.residuals{1};
%!  info.inliers = found.inliers{1};
%!  info.covariance = reshape(found.covariance, 6, 6);
%!  info.intrinsics = found.intrinsics{1};
%!  for k = found.num_steps:-1:1
%!    step = found.steps(:, k);
%!    info.history(k) = struct('pose', pose_of(step(4:15)), 'rms', step(1), 'turn', step(2), 'shift', step(3));
%!  end
%!  info.pose = pose_of(found.pose);
%!  info.alternative = [];
%!  if found.has_alternative
%!    info.alternative = struct('pose', pose_of(found.alternative(2:13)), 'rms', found.alternative(1));
%!  end
%!endfunction

%!function pose = pose_of(column)
%!  pose = struct('rotation', reshape(column(1:9), 3, 3), 'centre', column(10:12), 'form', 'pose', ...
%!                'frame', 'world_from_camera');
%!endfunction

%!test  % alone, and as one of three in a batch
%! for loss = {'none', 'huber', 'tukey'}
%!   scene = scene_of(loss{1});
%!   options = struct('PoseForm', '', 'PoseFrame', '', 'OutputForm', '', 'OutputFrame', '', 'MaxIterations', 30, ...
%!                    'StepTolerance', 1e-9, 'FunctionTolerance', 0, 'Weights', [], 'Loss', loss{1}, 'LossScale', [], ...
%!                    'NoiseSigma', []);
%!   found = kelvane_engine('refine', {scene.start}, {scene.points}, {scene.pixels}, {scene.K}, options);
%!   expected = expected_info(found);
%!   expected.points = scene.points;
%!   expected.observations = scene.pixels;
%!   [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, scene.options);
%!   assert(isequaln(orderfields(info), orderfields(expected)));
%!   assert(isequaln(pose, expected.pose));
%!   values = found.figures([2:11, 13]);
%!   assert(numel(unique(values)) > 5 && all(values > 0) && info.num_left_out == 2);  % no two zeros to be taken for each other
%!   problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%!   problems = repmat(problem, 1, 3);
%!   problems(1).start.centre = problems(1).start.centre + 0.1;
%!   problems(3).points = [];
%!   rows = kelvane_batch(problems, scene.options, 'Progress', 'off');
%!   assert(isequaln(orderfields(rows(2).info), orderfields(expected)));
%!   assert([rows(2).exitflag, rows(2).rms_before, rows(2).rms_after], found.figures(1:3)');
%! end

%!test  % the other tilt of a flat target that is far away
%! scene = scene_of('none');
%! scene.points(3, :) = 0;
%! scene.start = kelvane_pose([0.4 -0.3 0.1 0 0 0], 'rotation_vector', 'world_from_camera');
%! scene.start.centre = -200 * scene.start.rotation(:, 3);
%! scene.pixels = kelvane_project(scene.start, scene.points, scene.K) + 0.2 * sin((1:2)' * (1:30));
%! found = kelvane_engine('refine', {scene.start}, {scene.points}, {scene.pixels}, {scene.K}, struct());
%! assert(found.has_alternative);
%! expected = expected_info(found);
%! [~, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K);
%! assert(isequaln(info.alternative, expected.alternative));
%! assert(info.exitflag, -6);
