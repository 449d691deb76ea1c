% SPDX-License-Identifier: BSD-3-Clause
% What kelvane_refine tells: exit flags, messages, history, display and the output function.

%!function scene = scene()
%!  scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 31);
%!endfunction

%!function words = message_and_identifier(call)
%!  try
%!    call();
%!    words = {};
%!  catch caught
%!    words = {caught.message, caught.identifier};
%!  end
%!endfunction

%!function stop = fail_at(iteration, values)
%!  stop = false;
%!  if values.iteration == iteration
%!    error('my:own', 'kelvane_engine: 50 %% \n of %d', iteration);
%!  end
%!endfunction

%!function [pose, info] = refined(scene, varargin)
%!  [pose, info] = kelvane_refine(scene.start, scene.points, scene.pixels, scene.K, varargin{:});
%!endfunction

%!test  % the history begins with the start and ends with the pose, and its RMS comes down
%! s = scene();
%! [pose, info] = refined(s);
%! assert(numel(info.history), info.iterations + 1);
%! assert({info.history(1).pose.rotation, info.history(1).pose.centre}, {s.start.rotation, s.start.centre}, 1e-15);
%! assert(info.history(end).pose.centre, pose.centre);
%! rms = [info.history.rms];
%! assert([rms(1), rms(end)], [info.rms_before, info.rms_after]);
%! assert(all(diff(rms) <= 1e-12 * rms(1:end - 1)));
%! for k = 2:numel(rms)
%!   before = info.history(k - 1).pose;
%!   after = info.history(k).pose;
%!   moved = kelvane_pose({before.rotation' * after.rotation, [0 0 0]}, 'rotation_translation', 'world_from_camera', ...
%!                        'rotation_vector', 'world_from_camera');
%!   assert(info.history(k).turn, norm(moved(1:3)), 1e-12);
%!   assert(info.history(k).shift, norm(after.centre - before.centre), 1e-12);
%! end
%! assert(info.residuals, s.pixels - kelvane_project(pose, s.points, s.K), 1e-12);
%! assert({info.points, info.observations, info.intrinsics}, {s.points, s.pixels, s.K});

%!test  % the steps are quadratic: each is about the square of the one before
%! s = scene();
%! s.pixels = kelvane_project(s.truth, s.points, s.K);
%! [~, info] = refined(s);
%! turns = [info.history(2:end).turn];
%! assert(turns(3) < 10 * turns(2)^2 && turns(2) < 10 * turns(1)^2);
%! assert(turns(2) > 1e-4);  % one step in each
%! assert(info.iterations <= 6);

%!test  % every exit flag that can be had on purpose
%! s = scene();
%! flag_of = @(varargin) getfield(nthargout(2, @() refined(s, varargin{:})), 'exitflag');
%! assert(flag_of(), 1);
%! assert(flag_of('StepTolerance', 0), 2);
%! assert(flag_of('FunctionTolerance', 0.1), 3);
%! assert(flag_of('MaxIterations', 1), 0);
%! assert(flag_of('OutputFcn', @(pose, values, state) values.iteration == 2), -1);
%! noisy = s.pixels;
%! s.pixels = kelvane_project(s.truth, s.points, s.K);  % the cost comes down to nothing but rounding
%! flag_of = @(varargin) getfield(nthargout(2, @() refined(s, varargin{:})), 'exitflag');
%! assert(flag_of('StepTolerance', 0), 2);
%! s.pixels = noisy;
%! s.start = kelvane_pose({eye(3), [0; 0; -4]}, 'rotation_centre', 'world_from_camera');
%! s.points(:, 1) = [1; 2; -4];  % beside the camera
%! [pose, info] = refined(s);
%! assert(info.exitflag, -3);
%! assert(pose, s.start);

%!test  % a point is in the plane of the camera centre where its depth is nothing but rounding
%! s = scene();
%! s.start = kelvane_pose({eye(3), [0; 0; 0]}, 'rotation_centre', 'world_from_camera');
%! s.points = s.points + [0; 0; 4];
%! for depth = [5e-14, -5e-14, 5e-13, -5e-13]
%!   s.points(:, 1) = [1; 0.5; depth];
%!   [~, info] = refined(s, 'MaxIterations', 0);
%!   assert(info.exitflag == -3, abs(depth) < 1e-13);
%! end

%!test  % where rounding hides whether the cost falls a whole step is taken, not one part after the other of it
%! for seed = 60:-1:1
%!   s = noisy_scene([700 0 320; 0 700 240; 0 0 1], seed);
%!   [~, info] = refined(s, 'StepTolerance', 0);
%!   assert(info.exitflag, 2);
%!   iterations(seed) = info.iterations;
%! end
%! assert(mean(iterations) < 7);  % 5.9; with parts of steps 8.2

%!test  % a stop that OutputFcn asks for in the iteration that converges does not hide that it did
%! s = scene();
%! [~, info] = refined(s);
%! [~, stopped] = refined(s, 'OutputFcn', @(pose, values, state) values.iteration == info.iterations);
%! assert([stopped.exitflag, stopped.iterations], [info.exitflag, info.iterations]);

%!test  % every message
%! s = scene();
%! message_of = @(varargin) getfield(nthargout(2, @() refined(s, varargin{:})), 'message');
%! assert(message_of('StepTolerance', 0), 'Converged: rounding hides any further decrease.');
%! assert(message_of('FunctionTolerance', 0.1), 'Converged: the decrease is below FunctionTolerance = 0.1.');
%! assert(message_of('OutputFcn', @(pose, values, state) true), 'Not converged: stopped by OutputFcn.');
%! s.start = kelvane_pose({eye(3), [0; 0; -4]}, 'rotation_centre', 'world_from_camera');
%! s.points(:, 1) = [1; 2; -4];  % beside the camera
%! [~, info] = refined(s);
%! text = 'Not refined: at the start a point lies in the plane of the camera centre, and its prediction is not finite: point 1.';
%! assert(info.message(1:numel(text)), text);

%!test  % an observation that is so far off that its share of the cost swallows all others: nothing lowers that
%! s = scene();
%! s.pixels(:, 7) = 1e100;
%! [~, info] = refined(s, 'Loss', 'huber');
%! assert({info.exitflag, info.message}, {-2, 'Not converged: no part of the step lowers the cost.'});

%!test  % a target behind the camera is found in front of it, unless its pixels are those from behind: told, not converged
%! s = scene();
%! flat = s;
%! flat.points(3, :) = 0;
%! flat.pixels = kelvane_project(flat.truth, flat.points, flat.K);
%! flat.start.centre(3) = -flat.start.centre(3);  % on the other side, looking away: the same pixels
%! flat.start.rotation = diag([-1, -1, 1]) * flat.start.rotation;
%! [~, info] = refined(flat, 'MaxIterations', 0);
%! assert(info.num_behind, 30);
%! [pose, info] = refined(flat);
%! assert(info.exitflag > 0 && info.num_behind == 0);
%! assert({pose.rotation, pose.centre}, {flat.truth.rotation, flat.truth.centre}, 1e-9);
%! s.start = flat.start;
%! s.pixels = s.pixels - kelvane_project(s.truth, s.points, s.K) + kelvane_project(s.start, s.points, s.K);
%! for behind = 30:-14:16
%!   s.points(:, behind + 1:end) = 2 * s.start.centre - s.points(:, behind + 1:end);  % the same pixels from in front
%!   [~, info] = refined(s);
%!   assert([info.exitflag, info.num_behind], [-5, behind]);
%!   text = ['Not found: more than half of the weight lies behind the camera. ' ...
%!           '%d points lie behind the camera: this is hardly the pose that took the picture.'];
%!   assert(info.message, sprintf(text, behind));
%! end

%!test  % messages say why, and warn of points behind the camera
%! s = scene();
%! [~, info] = refined(s, 'MaxIterations', 2);
%! assert(info.message, 'Not converged: stopped after MaxIterations = 2.');
%! assert(info.iterations, 2);
%! [~, info] = refined(s, 'StepTolerance', 1e-3);
%! assert(info.message, 'Converged: the step is below StepTolerance = 0.001.');
%! mirrored = s;
%! mirrored.start.centre = 2 * mean(s.points, 2) - s.start.centre;
%! [~, info] = refined(mirrored, 'MaxIterations', 0);
%! assert(info.num_behind, 30);
%! assert(~isempty(strfind(info.message, '30 points lie behind the camera')));

%!test  % Display
%! s = scene();
%! assert(evalc('refined(s);'), '');
%! [~, info] = refined(s);
%! text = evalc('refined(s, ''Display'', ''final'');');
%! assert(strncmp(text, info.message, numel(info.message)));
%! text = evalc('refined(s, ''Display'', ''final'', ''MaxIterations'', 1);');
%! assert(text(end - 18:end), sprintf('after 1 iteration.\n'));
%! lines = strsplit(strtrim(evalc('refined(s, ''Display'', ''iter'');')), "\n");
%! assert(numel(lines), 1 + info.iterations + 1 + 2);
%! assert(sscanf(lines{2}, '%f')(1:2)', [0, info.rms_before], -1e-5);
%! assert(sscanf(lines{end - 2}, '%f')(1:2)', [info.iterations, info.rms_after], -1e-5);

%!test  % an error is one of the function that was called, and the next call knows nothing of it
%! s = scene();
%! best = refined(s);
%! told = @(varargin) message_and_identifier(@() refined(s, varargin{:}));
%! assert(told('StepTolerance', -1), {'StepTolerance must be a number of 0 or more.', 'kelvane:option'});
%! assert(told('Weights', 1:4), {['Weights must be one for each of the 30 points, or 2 x 30, one for each equation; this is ' ...
%!                                '1 x 4.'], 'kelvane:size'});
%! assert(message_and_identifier(@() kelvane_project(s.start, [1; NaN; 3], s.K)), ...
%!        {'points(2, 1) is NaN. All of it must be finite numbers.', 'kelvane:notFinite'});
%! assert(message_and_identifier(@() kelvane_pose(1:5, 'rotation_vector', 'world_from_camera')), ...
%!        {'the pose must be a vector of 6 elements; this is 1 x 5.', 'kelvane:size'});
%! assert(refined(s).centre, best.centre);

%!test  % an error in OutputFcn arrives as it was raised, and the next call knows nothing of it
%! s = scene();
%! best = refined(s);
%! for iteration = 0:2
%!   try
%!     refined(s, 'OutputFcn', @(pose, values, state) fail_at(iteration, values));
%!     caught = [];
%!   catch caught
%!   end
%!   assert({caught.identifier, caught.message}, {'my:own', sprintf('kelvane_engine: 50 %% \n of %d', iteration)});
%!   assert(caught.stack(1).name, 'fail_at');
%!   assert(refined(s).centre, best.centre);
%! end

%!test  % watching a refinement changes no bit of it, and stopping it keeps what it has found
%! s = scene();
%! for loss = {'none', 'tukey'}
%!   [pose, info] = refined(s, 'Loss', loss{1});
%!   [watched, watched_info] = refined(s, 'Loss', loss{1}, 'OutputFcn', @(pose, values, state) false);
%!   assert(isequal(watched, pose) && isequal(watched_info, info));
%!   for k = 0:2
%!     [stopped, stopped_info] = refined(s, 'Loss', loss{1}, 'OutputFcn', @(pose, values, state) values.iteration == k);
%!     [short, short_info] = refined(s, 'Loss', loss{1}, 'MaxIterations', k);
%!     assert(isequal(stopped, short));
%!     assert([stopped_info.exitflag, stopped_info.iterations], [-1, k]);
%!     assert(isequal(stopped_info.history, short_info.history));
%!   end
%! end

%!test  % OutputFcn sees the start, every iteration and the end, with the pose in its output form
%! global seen
%! seen = {};
%! s = scene();
%! [pose, info] = refined(s, 'OutputForm', 'colmap', 'OutputFcn', @keep_call);
%! states = cellfun(@(call) call{3}, seen, 'UniformOutput', false);
%! assert(states, [{'init'}, repmat({'iter'}, 1, info.iterations), {'done'}]);
%! assert(seen{1}{1}, kelvane_pose(s.start, 'colmap'), 1e-12);
%! assert(seen{end}{1}, pose, 1e-12);
%! assert(cellfun(@(call) call{2}.iteration, seen), [0:info.iterations, info.iterations]);
%! assert(seen{1}{2}.rms, info.rms_before, -1e-12);
%! clear -global seen

%!test  % a start at the optimum stays, within the rounding of one step
%! s = scene();
%! [best, info] = refined(s);
%! s.start = best;
%! [pose, again] = refined(s);
%! assert(again.rms_after <= again.rms_before);
%! assert(pose.centre, best.centre, 1e-10);
%! assert(again.iterations, 1);

%!test  % a start that exact observations leave nothing to lower at has converged, and comes back to the last bit
%! s = scene();
%! s.start = s.truth;
%! s.pixels = kelvane_project(s.truth, s.points, s.K);
%! directions = s;
%! directions.pixels = kelvane_project(s.truth, s.points, []);
%! directions.K = [];
%! for given = {s, directions}
%!   for options = {{}, {'Loss', 'tukey'}, {'StepTolerance', 0}}
%!     [pose, info] = refined(given{1}, options{1}{:});
%!     assert(info.exitflag > 0 && strncmp(info.message, 'Converged', 9), info.message);
%!     assert(pose, s.truth);
%!     assert(info.rms_after, 0, 1e-12);
%!   end
%! end

%!test  % a loss whose scale leaves no pull to any point: said, not called converged
%! s = scene();
%! for options = {{}, {'NoiseSigma', 1}}
%!   [pose, info] = refined(s, 'Loss', 'tukey', 'LossScale', 1e-4, options{1}{:});
%!   assert(info.exitflag, -4);
%!   assert(info.message, ['The points do not determine the pose: 0 have residuals below LossScale = 0.0001, the others ' ...
%!                         'no pull.']);
%!   assert(info.covariance, Inf(6));
%!   assert(pose, s.start);
%! end
