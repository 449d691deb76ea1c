% SPDX-License-Identifier: BSD-3-Clause
% The engines of kelvane_batch: bits on real measurements, and what is said where an engine cannot be had.

%!function problems = all_problems()
%!  problems = {};
%!  for set = {'chessboard', 'bal', 'bal_adjusted', 'castle', 'crane', 'omni'}
%!    for kind = {'pixel', 'chord'}
%!      if ~strcmp([set{1}, kind{1}], 'omnipixel')
%!        problems = [problems, num2cell(shared_problems(set{1}, kind{1}))];
%!      end
%!    end
%!  end
%!endfunction

%!function folder = stand_ins(name)
%!  folder = fullfile(fileparts(which('run_tests')), 'stand_ins', name);
%!endfunction

%!test  % where the package is missing the error says where to get it (before anything below loads it)
%! warning('off', 'Octave:shadowed-function', 'local');
%! addpath(stand_ins('no_packages'));
%! restoring = onCleanup(@() rmpath(stand_ins('no_packages')));
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%! problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%! try
%!   kelvane_batch(problem, 'Processes', 2, 'Progress', 'off');
%!   caught = struct('identifier', 'none');
%! catch caught
%! end
%! assert(caught.identifier, 'kelvane:noParallel');
%! assert(~isempty(strfind(caught.message, 'octave-parallel')));

%!test  % servers are told where the functions and the module are, whatever the names of the folders hold (the same)
%! global revals
%! revals = {};
%! work = tempname();
%! mkdir(work);
%! confirm_recursive_rmdir(false, 'local');
%! removing = onCleanup(@() rmdir(work, 's'));
%! folders = fullfile(work, {'o''d "); disp("\x41 $HOME', 'm''[1]'});
%! for k = 1:2
%!   mkdir(folders{k});
%!   from = fileparts(which({'kelvane_batch', 'kelvane_mex'}{k}));
%!   for name = setdiff(readdir(from), {'.', '..'})'
%!     symlink(fullfile(from, name{1}), fullfile(folders{k}, name{1}));
%!   end
%! end
%! paths = path();
%! restoring = onCleanup(@() path(paths));
%! warning('off', 'Octave:shadowed-function', 'local');
%! addpath(folders{[2, 1]}, stand_ins('servers'));
%! clear('kelvane_batch', 'kelvane_mex');
%! assert({fileparts(which('kelvane_batch')), fileparts(which('kelvane_mex'))}, folders);
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%! problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%! results = kelvane_batch(problem, 'Connections', struct('peer', 1), 'Progress', 'off');
%! assert(numel(revals), 1);
%! path(paths);
%! told = evalc(revals{1});
%! assert(told, '');
%! assert(strsplit(path(), pathsep())(2:3), folders([2, 1]));  % behind the current one
%! clear -global revals

%!test  % a pool of threads is refused, with the way out
%! addpath(stand_ins('threads'));
%! restoring = onCleanup(@() rmpath(stand_ins('threads')));
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%! problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%! fail('kelvane_batch(problem, ''Engine'', ''parfor'', ''Progress'', ''off'')', 'refuse MEX files');

%!test  % two processes return the bits of one, on every real problem and in its place; errors as well
%! if isempty(pkg('list', 'parallel'))
%!   disp('skipped: Octave''s package parallel is not installed');
%!   return;
%! end
%! problems = all_problems();
%! problems{3}.points(2) = NaN;
%! options = {'PoseFrame', 'world_from_camera', 'Progress', 'off'};
%! one = kelvane_batch(problems, options{:});
%! two = kelvane_batch(problems, 'Processes', 2, options{:});
%! bits = @(row) {row.name, row.pose, row.info, row.error};
%! assert(any(numel(one) == [90, 18]));  % of the whole sets, and of those that come with the project
%! for k = 1:numel(one)
%!   assert(isequal(bits(one(k)), bits(two(k))), problems{k}.name);
%! end
%! assert({one.name}, cellfun(@(p) p.name, problems, 'UniformOutput', false));
%! assert(find(~cellfun(@isempty, {one.error})), 3);
%! assert(all([one([1:2, 4:end]).exitflag] > 0));

%!test  % the work is done in two other processes
%! if isempty(pkg('list', 'parallel'))
%!   disp('skipped: Octave''s package parallel is not installed');
%!   return;
%! end
%! scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%! problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%! told = @(pose, values, state) error('kelvane:tests', 'process %d', getpid());
%! results = kelvane_batch(repmat(problem, 1, 8), 'Processes', 2, 'Progress', 'off', 'OutputFcn', told);
%! pids = unique({results.error});
%! assert(numel(pids), 2);
%! assert(~any(strcmp(pids, sprintf('process %d', getpid()))));

%!function problems = twenty_problems()
%!  scene = noisy_scene([700 0 320; 0 700 240; 0 0 1], 1);
%!  problem = struct('start', scene.start, 'points', scene.points, 'observations', scene.pixels, 'intrinsics', scene.K);
%!  problems = repmat(problem, 1, 20);
%!  problems(4).intrinsics = [];
%!endfunction

%!test  % without a screen the progress is a line, told about ten times
%! text = evalc('kelvane_batch(twenty_problems());');
%! told = strsplit(strtok(text, "\n"), "\r");
%! assert(numel(told), 11);
%! assert(told([2, 3, end]), {'refined 2 of 20', 'refined 4 of 20, 1 with an error', 'refined 20 of 20, 1 with an error'});
%! assert(evalc('results = kelvane_batch(twenty_problems(), ''Progress'', ''off'');'), '');

%!test  % with a screen it is a bar, which closes at the end and after an error
%! global bar_calls
%! bar_calls = cell(0, 2);
%! warning('off', 'Octave:shadowed-function', 'local');
%! folders = {stand_ins('screen'), stand_ins('threads')};
%! addpath(folders{:});
%! restoring = onCleanup(@() rmpath(folders{:}));
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
%! warning('off', 'Octave:shadowed-function', 'local');
%! addpath(stand_ins('screen'));
%! restoring = onCleanup(@() rmpath(stand_ins('screen')));
%! results = kelvane_batch(twenty_problems(), 'Progress', 'bar', 'OutputFcn', @close_all);
%! assert(size(bar_calls, 1), 1);
%! assert(sum([results.exitflag] > 0), 19);
%! clear -global bar_calls
