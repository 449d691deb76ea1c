% SPDX-License-Identifier: BSD-3-Clause
% kelvane_batch in this process: bits on real measurements, memory, and how far it tells that it is.

%!function problems = all_problems()
%!  problems = {};
%!  for set = {'chessboard', 'bal', 'bal_adjusted', 'castle', 'crane', 'omni'}
%!    for kind = {'pixel', 'chord'}
%!      if ~strcmp([set{1}, kind{1}], 'omnipixel')
%!        problems = [problems, num2cell(shared_problems(set{1}, kind{1}))];
%!      end
%!    end
%!  end
%!  problems{3}.points(2) = NaN;
%!endfunction

%!function assert_same(one, other)
%!  assert({one.name}, {other.name});
%!  for k = 1:numel(one)
%!    assert(isequaln(one(k), other(k)), one(k).name);
%!  end
%!endfunction

%!function problems = twenty_problems()
%!  problems = scene_problems(20);
%!  problems(4).intrinsics = [];
%!endfunction

%!test  % threads and processes return the bits of kelvane_refine, on every real problem and in its place; errors as well
%! problems = all_problems();
%! options = {'PoseFrame', 'world_from_camera', 'Loss', 'huber', 'Progress', 'off'};
%! one = kelvane_batch(problems, 'Threads', 1, options{:});
%! assert(any(numel(one) == [90, 18]));  % of the whole sets, and of those that come with the project
%! assert({one.name}, cellfun(@(p) p.name, problems, 'UniformOutput', false));
%! for k = [1:2, 4:numel(one)]
%!   p = problems{k};
%!   [pose, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, options{1:4});
%!   assert(isequaln({one(k).pose, one(k).info, one(k).exitflag}, {pose, info, info.exitflag}), p.name);
%! end
%! assert_same(one, kelvane_batch(problems, 'Threads', 2, options{:}));
%! if has_parallel()
%!   assert_same(one, kelvane_batch(problems, 'Processes', 2, options{:}));
%! end
%! assert(find(~cellfun(@isempty, {one.error})), 3);
%! assert(all([one([1:2, 4:end]).exitflag] > 0));

%!test  % a refinement that is left after every iteration and taken up again has the same bits
%! global num_calls_of_engine
%! problems = all_problems();
%! problems{6}.options = struct('MaxIterations', 2);
%! for k = 1:numel(problems)
%!   problems{k}.start = kelvane_pose(problems{k}.start, '', 'world_from_camera');
%!   problems{k}.start.comes_back = true;
%! end
%! options = {'PoseFrame', 'world_from_camera', 'Loss', 'tukey', 'Progress', 'off', 'Threads', 2};
%! whole = kelvane_batch(problems, options{:});
%! restoring = stand_in('engine');
%! num_calls_of_engine = 0;
%! assert_same(whole, kelvane_batch(problems, options{:}));
%! most = max(arrayfun(@(row) row.info.iterations, whole([1:2, 4:end])));
%! assert(num_calls_of_engine > most);
%! clear -global num_calls_of_engine

%!function kilobytes = memory_in_use()
%!  text = fileread('/proc/self/status');
%!  kilobytes = str2double(regexp(text, 'VmRSS:\s+(\d+)', 'tokens', 'once'){1});
%!endfunction

%!test  % the results share the points and the observations with the problems: no copy of them is made
%! problems = repmat(scene_problems(1), 1, 20);
%! for k = 1:20
%!   problems(k).points = repmat(problems(k).points, 1, 3000) + k;
%!   problems(k).observations = repmat(problems(k).observations, 1, 3000) + 1e-3 * k;
%!   problems(k).start.centre = problems(k).start.centre + k;
%! end
%! kilobytes_of_inputs = 20 * 90000 * 5 * 8 / 1024;
%! before = memory_in_use();
%! results = kelvane_batch(problems, 'Progress', 'off', 'MaxIterations', 2);
%! growth = memory_in_use() - before;
%! kilobytes_of_residuals = 20 * 90000 * (2 * 8 + 1) / 1024;
%! assert(isequal(results(20).info.points, problems(20).points));
%! assert(growth < kilobytes_of_residuals + 0.4 * kilobytes_of_inputs);

%!test  % no problems, no results; still with the fields
%! fields = {'name', 'pose', 'info', 'exitflag', 'rms_before', 'rms_after', 'error', 'identifier'};
%! for problems = {struct([]), {}, cell(0, 1)}
%!   for engine = {'threads', 'parfor'}
%!     results = kelvane_batch(problems{1}, 'Progress', 'line', 'Engine', engine{1});
%!     assert(size(results), [1, 0]);
%!     assert(fieldnames(results)', fields);
%!   end
%! end
%! text = evalc('kelvane_batch({}, ''Progress'', ''off'')');
%! assert(strsplit(strtrim(text), "\n"){end}, '0 of 0 converged, 0 with an error.');

%!test  % wrong options of one problem are an error of its row, whatever is wrong with them
%! problems = scene_problems(4);
%! problems(1).options = struct('MaxIter', 3);
%! problems(2).options = struct('StepTolerance', -1);
%! problems(3).options = 5;
%! results = kelvane_batch(problems, 'Progress', 'off', 'Loss', 'huber');
%! assert(~isempty(strfind(results(1).error, 'Did you mean ''MaxIterations''')));
%! assert(results(2).error, 'StepTolerance must be a number of 0 or more.');
%! assert({results(1:3).identifier}, {'kelvane:unknownOption', 'kelvane:option', 'kelvane:noValue'});
%! assert(isempty(results(1).info) && isempty(results(2).pose) && isnan(results(3).exitflag));
%! assert(results(4).exitflag > 0 && isfinite(results(4).info.loss_scale));

%!test  % a problem that is watched is refined here, one after the other; its neighbours as ever
%! problems = scene_problems(3);
%! problems(2).options.OutputFcn = @(pose, values, state) values.iteration == 1;
%! p = problems(2);
%! [~, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, p.options);
%! results = kelvane_batch(problems, 'Progress', 'off');
%! assert([results.exitflag] > 0, [true, false, true]);
%! assert(results(2).exitflag, -1);
%! assert(isequal(results(2).info, info));

%!test  % poses and cameras as MATLAB's objects, and poses in a form for each problem
%! restoring = stand_in('');
%! problems = scene_problems(3);
%! problems(1).start = kelvane_pose(problems(1).start, 'rigidtform3d', 'camera_from_world');
%! problems(1).options = struct('PoseFrame', 'camera_from_world');
%! problems(2).intrinsics = cameraIntrinsics([700, 700], [320, 240], 0);
%! problems(2).options = struct();
%! problems(3).options = struct('OutputForm', 'rigidtform3d');
%! results = kelvane_batch(problems, 'Progress', 'off');
%! for k = 1:3
%!   p = problems(k);
%!   [pose, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, p.options);
%!   assert(isequal(results(k).info, info));
%!   assert(class(results(k).pose), class(pose));
%!   if isobject(pose)
%!     assert({results(k).pose.R, results(k).pose.Translation}, {pose.R, pose.Translation});
%!   else
%!     assert(isequal(results(k).pose, pose));
%!   end
%! end
%! assert(cellfun(@isobject, {results.pose}), [true, false, true]);
%! clear('restoring', 'rigidtform3d');
%! results = kelvane_batch(problems(2:3), 'Progress', 'off');
%! assert({results.identifier}, {'', 'kelvane:noClass'});
%! assert(isempty(results(2).pose) && isempty(results(2).info) && isnan(results(2).exitflag));

%!test  % without a screen the progress is a line, told about ten times
%! text = evalc('kelvane_batch(twenty_problems());');
%! told = strsplit(strtok(text, "\n"), "\r");
%! assert(numel(told), 11);
%! assert(told([2, 3, end]), {'refined 2 of 20', 'refined 4 of 20, 1 with an error', 'refined 20 of 20, 1 with an error'});
%! assert(evalc('results = kelvane_batch(twenty_problems(), ''Progress'', ''off'');'), '');

%!test  % with a screen it is a bar, which closes at the end and after an error
%! global bar_calls
%! bar_calls = cell(0, 2);
%! restoring = {stand_in('screen'), stand_in('threads')};
%! assert(evalc('results = kelvane_batch(twenty_problems());'), '');
%! assert([bar_calls{:, 1}], (0:10) / 10, eps);
%! assert(bar_calls([1, 2, end], 2), {'refined 0 of 20'; 'refined 2 of 20'; 'refined 20 of 20, 1 with an error'});
%! assert(isempty(get(0, 'children')));
%! fail('kelvane_batch(twenty_problems(), ''Engine'', ''parfor'')', 'refuse MEX files');
%! assert(size(bar_calls, 1), 12);
%! assert(isempty(get(0, 'children')));
%! clear -global bar_calls

%!test  % a bar that the user has closed stays closed
%! global bar_calls
%! bar_calls = cell(0, 2);
%! restoring = stand_in('screen');
%! results = kelvane_batch(twenty_problems(), 'Progress', 'bar', 'OutputFcn', @close_all);
%! assert(size(bar_calls, 1), 1);
%! assert(sum([results.exitflag] > 0), 19);
%! clear -global bar_calls
