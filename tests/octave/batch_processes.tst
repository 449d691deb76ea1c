% SPDX-License-Identifier: BSD-3-Clause
% kelvane_batch on other processes: what is said where they cannot be had, and what is left of a batch when they die.

%!test  % where the package is missing the error says where to get it (before anything below loads it)
%! restoring = stand_in('no_packages');
%! try
%!   kelvane_batch(scene_problems(1), 'Processes', 2, 'Progress', 'off');
%!   caught = struct('identifier', 'none');
%! catch caught
%! end
%! assert(caught.identifier, 'kelvane:noParallel');
%! assert(~isempty(strfind(caught.message, 'octave-parallel')));

%!test  % servers are told where the module is, whatever the name of the folder holds (the same)
%! global revals
%! revals = {};
%! folder = fullfile(tempname(), 'o''d "); disp("\x41 $HOME m''[1]');
%! mkdir(fileparts(folder));
%! mkdir(folder);
%! confirm_recursive_rmdir(false, 'local');
%! removing = onCleanup(@() rmdir(fileparts(folder), 's'));
%! symlink(which('kelvane_engine'), fullfile(folder, 'kelvane_engine.mex'));
%! restoring = stand_in('servers');
%! paths = path();
%! restoring_paths = onCleanup(@() path(paths));
%! warning('off', 'Octave:shadowed-function', 'local');
%! addpath(folder);
%! clear('kelvane_engine');
%! assert(fileparts(which('kelvane_engine')), folder);
%! results = kelvane_batch(scene_problems(1), 'Connections', struct('peer', 1), 'Progress', 'off');
%! assert(results.exitflag > 0);
%! assert(numel(revals), 1);
%! path(paths);
%! told = evalc(revals{1});
%! assert(told, '');
%! assert(strsplit(path(), pathsep()){2}, folder);  % behind the current one
%! path(paths);
%! clear -global revals

%!test  % a pool of threads is refused, with the way out
%! restoring = stand_in('threads');
%! fail('kelvane_batch(scene_problems(1), ''Engine'', ''parfor'', ''Progress'', ''off'')', 'refuse MEX files');

%!test  % the work is done in two other processes, and in this one with a function to call
%! if has_parallel()
%!   restoring = stand_in('engine');
%!   problems = scene_problems(20);
%!   file = tempname();
%!   for k = 1:20
%!     problems(k).start.tells_process = file;
%!   end
%!   kelvane_batch(problems, 'Processes', 2, 'Progress', 'off');
%!   processes = load(file);
%!   delete(file);
%!   assert(numel(processes), 20);
%!   assert(numel(unique(processes)), 2);
%!   assert(~any(processes == getpid()));
%!   told = @(pose, values, state) error('kelvane:tests', 'process %d', getpid());
%!   results = kelvane_batch(scene_problems(20), 'Processes', 2, 'Progress', 'off', 'OutputFcn', told);
%!   assert({results.error}, repmat({sprintf('process %d', getpid())}, 1, 20));
%! end

%!test  % so are the trials of problems without a start, and what they came to is refined as any other
%! if has_parallel()
%!   problems = scene_problems(12);
%!   [problems([2 5:9]).start] = deal([]);
%!   problems(7).observations = [1 2 3];
%!   expected = kelvane_batch(problems, 'Threads', 1, 'Progress', 'off');
%!   assert(isequaln(kelvane_batch(problems, 'Processes', 2, 'Progress', 'off'), expected));
%!   assert([expected.exitflag] > 0, (1:12) != 7);
%!   assert(strncmp(expected(2).info.message, 'Started from an estimate', 24));
%! end

%!test  % Octave ends well after a batch on other processes
%! if has_parallel()
%!   folders = cellfun(@(name) fileparts(which(name)), {'kelvane_engine', 'kelvane_batch', 'scene_problems'}, ...
%!                     'UniformOutput', false);
%!   code = 'results = kelvane_batch(scene_problems(2), ''Processes'', 2, ''Progress'', ''off''); disp([results.exitflag])';
%!   [status, said] = system(sprintf(['octave-cli --norc --no-history -q --path "%s" --path "%s" --path "%s" ', ...
%!                                    '--eval "%s" 2>&1'], folders{:}, code));
%!   assert({status, strtrim(said)}, {0, '1   1'});
%! end

%!test  % a pool that is lost for good costs what it had an error, and not this process
%! global num_pools
%! num_pools = 1;
%! restoring = stand_in('lost_pool');
%! results = kelvane_batch(scene_problems(20), 'Engine', 'parfor', 'Progress', 'off');
%! assert(unique({results.identifier}), {'kelvane:lostProcess'});
%! clear -global num_pools

%!test  % Ctrl-C ends the whole batch
%! if has_parallel()
%!   problems = scene_problems(40);
%!   problems(33).start.interrupts_process = getpid();
%!   restoring = stand_in('engine');
%!   try
%!     kelvane_batch(problems, 'Processes', 2, 'Progress', 'off');
%!     caught = struct('identifier', 'none');
%!   catch caught
%!   end
%!   assert(caught.identifier, 'kelvane:interrupted');
%! end

%!test  % an error that a process raises stays in its group
%! if has_parallel()
%!   problems = scene_problems(32);
%!   expected = kelvane_batch(problems, 'Progress', 'off');
%!   problems(7).start.raises_error = true;
%!   restoring = stand_in('engine');
%!   results = kelvane_batch(problems, 'Processes', 2, 'Progress', 'off');
%!   assert(find(strcmp({results.identifier}, 'kelvane:lostProcess')), 7:8);
%!   assert(~isempty(strfind(results(7).error, '(an error in the process)')));
%!   assert(isequaln(expected([1:6, 9:32]), results([1:6, 9:32])));
%! end

%!test  % what a process has found is not found again here, unless this process rounds in another way
%! if has_parallel()
%!   problems = scene_problems(8);
%!   expected = kelvane_batch(problems, 'Progress', 'off', 'Loss', 'tukey');
%!   problems(5).start.spoils_state = true;
%!   for k = 1:8
%!     problems(k).start.comes_back = true;
%!   end
%!   restoring = stand_in('engine');
%!   global num_calls_of_engine
%!   num_calls_of_engine = 0;
%!   found = kelvane_batch(problems, 'Processes', 2, 'Progress', 'off', 'Loss', 'tukey');
%!   assert(isequaln(expected, found));
%!   assert(num_calls_of_engine, 8 + found(5).info.iterations + 1);  % one for each, and those of the one that is refused
%!   clear -global num_calls_of_engine
%! end

% What kills processes comes last: Octave warns of a broken pipe some time later.

%!test  % a process that dies of a problem costs that and those sent with it an error; all others come, in their place
%! if has_parallel()
%!   problems = scene_problems(80);
%!   problems(40).points(1) = Inf;
%!   expected = kelvane_batch(problems, 'Progress', 'off');
%!   problems(33).start.kills_process = true;
%!   problems(77).start.kills_process = true;
%!   restoring = stand_in('engine');
%!   results = kelvane_batch(problems, 'Processes', 2, 'Progress', 'off');
%!   lost = find(strcmp({results.identifier}, 'kelvane:lostProcess'));
%!   assert(lost, [31:35, 76:80]);  % sixteen groups of five
%!   assert(~isempty(strfind(results(33).error, 'were sent with it: 4.')));
%!   assert(isempty(results(33).pose) && isempty(results(33).info) && isnan(results(33).rms_after));
%!   others = setdiff(1:80, lost);
%!   assert(isequaln(expected(others), results(others)));
%!   alone = kelvane_batch(problems(33), 'Processes', 2, 'Progress', 'off');
%!   assert(alone.identifier, 'kelvane:lostProcess');
%! end

%!test  % a process that is killed from outside costs nothing
%! if has_parallel()
%!   problems = scene_problems(80);
%!   expected = kelvane_batch(problems, 'Progress', 'off');
%!   file = tempname();
%!   write_text(file, '');
%!   problems(50).start.kills_process_once = file;
%!   restoring = stand_in('engine');
%!   assert(isequaln(expected, kelvane_batch(problems, 'Processes', 2, 'Progress', 'off')));
%!   assert(exist(file, 'file'), 0);
%! end
