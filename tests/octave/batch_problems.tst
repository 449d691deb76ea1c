% SPDX-License-Identifier: BSD-3-Clause
% kelvane_batch: problems without a start, with options of their own, what is shown of them, and what is refused.

%!function problems = some_problems(n)
%!  points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%!  for k = n:-1:1
%!    truth = kelvane_pose([0.1 0 0.02 * k, 0.1 * k, 0, -4], 'rotation_vector', 'world_from_camera');
%!    start = truth;
%!    start.centre = truth.centre + [0.2; -0.1; 0.1];
%!    pixels = kelvane_project(truth, points, [500 320 240]) + 0.3 * sin(k * [1:6; 3:8]);
%!    problems(k) = struct('start', start, 'points', points, 'observations', pixels, 'intrinsics', [500 320 240]);
%!  end
%!endfunction

%!test  % an error stays in its row, with its identifier
%! problems = some_problems(4);
%! problems(2).points = problems(2).points(:, 1:5);
%! problems(4).start = 'nowhere';
%! results = kelvane_batch(problems, 'Progress', 'off');
%! assert(cellfun(@isempty, {results.error}), [true, false, true, false]);
%! assert(results(2).error, 'points must be 3 x 6 or 6 x 3, as there are 6 observations; this is 3 x 5.');
%! assert(results(2).identifier, 'kelvane:size');
%! assert(isempty(results(2).pose) && isempty(results(2).info) && isnan(results(2).rms_after));
%! assert([results([1, 3]).exitflag] > 0);

%!test  % without a start each is estimated first, as by kelvane_refine
%! problems = some_problems(6);
%! points = [problems(1).points, [0.4 -0.3 0.2; -0.6 0.7 0.1; 0.3 -0.2 -0.4]];
%! for k = 1:6
%!   truth = kelvane_pose([0.1 0 0.02 * k, 0.1 * k, 0, -4], 'rotation_vector', 'world_from_camera');
%!   problems(k).points = points;
%!   problems(k).observations = kelvane_project(truth, points, [500 320 240]) + 0.3 * sin(k * [1:9; 3:11]);
%! end
%! problems(2).observations(:, [1 4]) = problems(2).observations(:, [4 1]);
%! problems(3).observations(:, 4:9) = NaN;
%! problems(5).points = points(:, 1:8);
%! [problems([2 3 5]).start] = deal([]);
%! results = kelvane_batch(problems, 'Progress', 'off', 'OutputForm', 'colmap');
%! for k = [1 2 3 4 6]
%!   p = problems(k);
%!   [pose, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, 'OutputForm', 'colmap');
%!   assert(isequaln(results(k).pose, pose) && isequaln(results(k).info, info), sprintf('problem %d', k));
%! end
%! assert([results.exitflag], [1 1 -4 1 NaN 1]);
%! assert(find(~results(2).info.inliers), [1 4]);
%! assert(strncmp(results(2).info.message, 'Started from an estimate with which 7 of 9 points agree. Conv', 50));
%! assert(isempty(results(5).info) && strcmp(results(5).identifier, 'kelvane:size'));
%! startless = rmfield(problems, 'start');
%! results = kelvane_batch(startless, 'Progress', 'off');
%! for engine = {'threads', 'serial', 'parfor'}
%!   assert(isequaln(kelvane_batch(startless, 'Progress', 'off', 'Engine', engine{1}), results));
%! end
%! assert([results.exitflag] > 0, [true true false true false true]);

%!test  % options of one problem go before those of all
%! problems = some_problems(2);
%! problems(2).options = struct('MaxIterations', 0, 'OutputForm', 'colmap');
%! results = kelvane_batch(problems, 'Progress', 'off', struct('MaxIterations', 2));
%! assert([results(1).info.iterations, results(2).info.iterations], [2, 0]);
%! assert(isstruct(results(1).pose) && iscell(results(2).pose));

%!test  % the line of progress ends with all problems and counts errors; the table has a line for each
%! problems = some_problems(12);
%! problems(3).intrinsics = [];
%! text = evalc('results = kelvane_batch(problems, ''Progress'', ''line'');');
%! assert(numel(strfind(text, sprintf('\r'))), 6);
%! assert(~isempty(strfind(text, sprintf('refined 12 of 12, 1 with an error\n'))));
%! problems(5).name = 'fifth';
%! lines = strsplit(strtrim(evalc('kelvane_batch(problems, ''Progress'', ''off'')')), "\n");
%! assert(numel(lines), 14);
%! assert(~isempty(strfind(lines{4}, 'With 2 x N observations the intrinsics')));
%! assert(strncmp(strtrim(lines{6}), 'fifth ', 6));
%! assert(lines{end}, '11 of 12 converged, 1 with an error.');

%!error <needs problems> kelvane_batch()
%!error <problems must be a struct array or a cell of structs; this is of class double> kelvane_batch(1:3)
%!error <problems\(2\) has no field 'intrinsics'> kelvane_batch({some_problems(1), rmfield(some_problems(1), 'intrinsics')})
%!error <problems\{2\} is a struct array of size 1 x 3; a cell holds one problem> kelvane_batch({some_problems(1), some_problems(3)})
%!error <problems\{1\} is a struct array of size 0 x 0> kelvane_batch({struct([])})
%!error <problems\(1\).name must be a text; this is of class double> kelvane_batch(setfield(some_problems(1), 'name', 7))
%!error <Connections must be what pconnect returned> kelvane_batch(some_problems(1), 'Connections', 2)
%!error <'Proceses' is not an option of kelvane_batch. Did you mean 'Processes'> kelvane_batch(some_problems(1), 'Proceses', 2)
%!error <'hubert' is not a loss> kelvane_batch(some_problems(1), 'Loss', 'hubert')
%!error <StepTolerance must be a number of 0 or more> kelvane_batch(some_problems(1), 'StepTolerance', -1)
%!error <Threads must be a whole number of 0 or more> kelvane_batch(some_problems(1), 'Threads', -1)
%!error <Processes must be a whole number of 1 or more> kelvane_batch(some_problems(1), 'Processes', 1.5)
%!error <The engine netcellfun needs Connections> kelvane_batch(some_problems(1), 'Engine', 'netcellfun')
%!error <is not an engine. Did you mean 'parcellfun'> kelvane_batch(some_problems(1), 'Engine', 'parcelfun')
