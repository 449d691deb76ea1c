% KELVANE_BATCH  Refine many camera poses, on all processors or machines.
%
%   results = kelvane_batch(problems)
%   results = kelvane_batch(problems, name, value, ...)
%   kelvane_batch(problems, ...)
%
%   Does for each problem what kelvane_refine does. An error in one is told in its result and leaves the others alone. The
%   results are those of kelvane_refine, to the last bit, whatever the number of threads or processes. Without an output a
%   table is printed.
%
%   Inputs:
%     problems  struct array, or cell with a struct for each problem, as kelvane_read_colmap and kelvane_read_bal return
%               it, with the fields
%       start, points, observations, intrinsics  the inputs of kelvane_refine, in its sizes, units and frames; start may be
%                                                [] or missing, and is then estimated first, as in kelvane_refine
%       name                                     text for the table, by default the number of the problem
%       options                                  options of kelvane_refine for this problem alone, a struct
%     Other fields are not looked at.
%
%   Options, by name in any capitals, or as a struct:
%     'Threads'      how many threads of this process refine, 1 or more; default 0: as many as the machine runs at once
%     'Processes'    how many other processes to run, where they are asked for; default 1
%     'Engine'       what refines:
%                      'auto'        (default) threads, unless Connections or more than one of Processes are asked for
%                      'threads'     threads of this process
%                      'serial'      one of them
%                      'parcellfun'  Octave: processes on this machine; needs the package parallel (octave-parallel)
%                      'netcellfun'  Octave: the servers of Connections, from the same package
%                      'parfor'      MATLAB: the current pool, which may be that of a cluster, whatever Processes says. In
%                                    Octave parfor runs in this process.
%     'Connections'  what pconnect returned; each server runs as many processes as it has processors (see network_set)
%     'Progress'     'auto' (default): a bar where there is a screen, otherwise a line; 'bar', 'line' or 'off'
%     All options of kelvane_refine, for every problem that has none of its own. With 'Display' or 'OutputFcn' a problem is
%     refined in this process, one after the other.
%
%   Threads are the fastest: nothing is copied or sent. Other processes get the problems in groups. One of them that dies
%   costs the problems of its group an error, kelvane:lostProcess; all other results come. Where the servers of Connections
%   are lost, processes of this machine take over, with a warning.
%
%   results is a 1 x n struct array with the fields
%     name                             that of the problem
%     pose, info                       what kelvane_refine returned; [] after an error
%     exitflag, rms_before, rms_after  from info; NaN after an error
%     error, identifier                the error's message and identifier, '' without one
%
%   Servers of Octave must run the same version of the package, and find the folder of the built module under the same name
%   as here, on a shared disk. pserver starts one. Debian's cannot switch off authentication through pserver's
%   options, and has none: start octave-pserver --octave-binary=... --no-auth on each machine instead, as an ordinary user,
%   in a network of your own: whoever reaches its ports can run anything.
%
%   MATLAB's pools of threads refuse MEX files: open one of processes, parpool('Processes'). Workers on other machines
%   get the module with addAttachedFiles(gcp, {'kelvane_engine.mexa64'}). (By MATLAB's documents; not run.)
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> for k = 1:3
%     ..   truth = kelvane_pose([0 0 0, 0.1 * k, 0, -4], 'rotation_vector', 'world_from_camera');
%     ..   problems(k) = struct('start', truth, 'points', points, 'intrinsics', [500 320 240], ...
%     ..                        'observations', kelvane_project(truth, points, [500 320 240]));
%     ..   problems(k).start.centre = truth.centre + [0.2; -0.1; 0.1];
%     .. end
%     >> problems(2).points(3) = NaN;
%     >> results = kelvane_batch(problems, 'Progress', 'off');
%     >> fprintf('x = %.6f\n', results(3).pose.centre(1))
%     x = 0.300000
%     >> results(2).error
%     ans = points(3, 1) is NaN. All of it must be finite numbers.
%
%
%   See also kelvane_refine, kelvane_estimate, kelvane_read_colmap, kelvane_read_bal, kelvane_plot.

% SPDX-License-Identifier: BSD-3-Clause
% Many refinements by the engines that the hosts have.
function results = kelvane_batch(problems, varargin)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_batch needs problems, a struct array.');
  end
  [batch, options] = batch_options(varargin);
  [problems, results] = batch_problems(problems, options);
  results = in_rounds(problems, results, options, batch);
  if nargout == 0
    print_results(results);
    clear results
  end
end

% The problems in rounds, with a look at the progress after each: about ten of them, so that waiting for the last of a
% round costs little.
function results = in_rounds(problems, results, options, batch)
  n = numel(problems);
  size_of_round = n;
  if ~strcmp(batch.Progress, 'off')
    size_of_round = max(batch.Processes, ceil(n / 10));
  end
  show = batch_progress(batch.Progress, n);
  for first = 1:max(1, size_of_round):n
    last = min(n, first + size_of_round - 1);
    k = first:last;
    [results(k), batch] = refined(problems(k), results(k), options, batch);
    show(last, sum(~cellfun('isempty', {results(1:last).error})));
  end
end

% What has no error yet: here and one after the other where it is watched, since callbacks belong to this process.
function [results, batch] = refined(problems, results, options, batch)
  own = [problems.options];
  if isempty(own)
    own = repmat(options, 1, numel(problems));
  end
  is_watched = ~cellfun('isempty', {own.OutputFcn}) | ~strcmp({own.Display}, 'off');
  is_open = cellfun('isempty', {results.error});
  for k = find(is_open & is_watched)
    results(k) = watched(problems(k), results(k), own(k));
  end
  k = find(is_open & ~is_watched);
  if isempty(k)
    return;
  end
  [rows, batch] = rows_of(problems(k), options, batch);
  rows = rmfield(rows, 'state');
  [rows.name] = results(k).name;
  results(k) = with_objects(orderfields(rows, results), own(k));
end

% Those without a start are estimated before, as in kelvane_refine; where that leaves a doubt it is the result.
function [rows, batch] = rows_of(problems, options, batch)
  has_start = ~cellfun('isempty', {problems.start});
  if all(has_start)
    [rows, batch] = rows_by_engine('refine', problems, options, batch);
    return;
  end
  if isempty([problems.options])
    [problems.options] = deal(options);
  end
  [estimates, batch] = rows_by_engine('estimate', problems(~has_start), options, batch);
  rows(~has_start) = estimates;
  is_found = [estimates.exitflag] > 0;
  found = find(~has_start);
  found = found(is_found);
  estimates = estimates(is_found);
  problems(found) = with_estimates(problems(found), estimates);
  has_start(found) = true;
  if any(has_start)
    [rows(has_start), batch] = rows_by_engine('refine', problems(has_start), options, batch);
  end
  for k = 1:numel(found)
    if isempty(rows(found(k)).error)
      rows(found(k)).info = with_estimate_told(rows(found(k)).info, estimates(k).info);
    end
  end
end

function [rows, batch] = rows_by_engine(verb, problems, options, batch)
  if strcmp(batch.Engine, 'threads')
    [rows, batch] = rows_by_threads(verb, problems, options, batch);
  else
    [rows, batch] = rows_by_processes(verb, problems, options, batch);
  end
end

function result = watched(problem, result, options)
  try
    [result.pose, result.info] = kelvane_refine(problem.start, problem.points, problem.observations, problem.intrinsics, ...
                                                options);
    result.exitflag = result.info.exitflag;
    result.rms_before = result.info.rms_before;
    result.rms_after = result.info.rms_after;
  catch caught
    result = failed(result, caught);
  end
end

% Poses in the form of MATLAB's objects.
function results = with_objects(results, options)
  forms = {options.OutputForm};
  is_default = cellfun('isempty', forms);
  forms(is_default) = {options(is_default).PoseForm};
  for k = find(strcmp(forms, 'rigidtform3d') & cellfun('isempty', {results.error}))
    try
      results(k).pose = written_pose(results(k).pose, forms{k});
    catch caught
      results(k) = failed(results(k), caught);
    end
  end
end

function result = failed(result, caught)
  result = struct('name', result.name, 'pose', [], 'info', [], 'exitflag', NaN, 'rms_before', NaN, 'rms_after', NaN, ...
                  'error', caught.message, 'identifier', caught.identifier);
end

% A table, a line for each problem.
function print_results(results)
  width = max([7, cellfun(@numel, {results.name})]);
  fprintf('%-*s %8s %12s %12s %10s  %s\n', width, 'problem', 'points', 'RMS before', 'RMS after', 'iterations', 'ended');
  for row = results
    if isempty(row.error)
      fprintf('%-*s %8d %12.5g %12.5g %10d  %s\n', width, row.name, size(row.info.points, 2), row.rms_before, ...
              row.rms_after, row.info.iterations, row.info.message);
    else
      fprintf('%-*s %8s %12s %12s %10s  %s\n', width, row.name, '', '', '', '', row.error);
    end
  end
  failed = sum(~cellfun(@isempty, {results.error}));
  fprintf('%d of %d converged, %d with an error.\n', sum([results.exitflag] > 0), numel(results), failed);
end

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

%!test  % each row is what kelvane_refine returns, whatever the engine and the cameras
%! problems = some_problems(5);
%! problems(2).intrinsics = kelvane_camera('SIMPLE_RADIAL', [500 320 240 -0.1]);
%! problems(4).intrinsics = kelvane_camera('OPENCV_FISHEYE', [520 520 320 240 0 0 0 0]);
%! results = kelvane_batch(problems, 'Progress', 'off', 'MaxIterations', 3);
%! for k = 1:5
%!   p = problems(k);
%!   [pose, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, 'MaxIterations', 3);
%!   assert(isequal(results(k).pose, pose) && isequal(results(k).info, info));
%!   assert([results(k).exitflag, results(k).rms_before, results(k).rms_after], ...
%!          [info.exitflag, info.rms_before, info.rms_after]);
%!   assert(isstruct(info.intrinsics), any(k == [2, 4]));
%!   assert({results(k).name, results(k).error}, {sprintf('%d', k), ''});
%! end
%! for engine = {'threads', 'serial', 'parfor'}
%!   assert(isequal(kelvane_batch(problems, 'Progress', 'off', 'MaxIterations', 3, 'Engine', engine{1}), results));
%! end
%! assert(isequal(kelvane_batch(num2cell(problems)', 'Progress', 'off', 'MaxIterations', 3), results));
%! different = num2cell(problems);
%! different{2}.name = '2';
%! different{4}.more = 1;
%! assert(isequal(kelvane_batch(different, 'Progress', 'off', 'MaxIterations', 3), results));

%!demo
%! % ten poses, on all processors; without an output their table is printed
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! for k = 1:10
%!   truth = kelvane_pose([0.1 0 0.02 * k, 0.1 * k, 0, -4], 'rotation_vector', 'world_from_camera');
%!   pixels = kelvane_project(truth, points, [500 320 240]) + 0.3 * sin(k * [1:6; 3:8]);
%!   problems(k) = struct('start', truth, 'points', points, 'observations', pixels, 'intrinsics', [500 320 240]);
%! end
%! kelvane_batch(problems, 'Progress', 'line')
