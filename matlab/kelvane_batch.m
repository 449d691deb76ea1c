% KELVANE_BATCH  Refine many camera poses, in as many processes as wanted.
%
%   results = kelvane_batch(problems)
%   results = kelvane_batch(problems, name, value, ...)
%   kelvane_batch(problems, ...)
%
%   Calls kelvane_refine for each problem. An error in one is told in its result and leaves the others alone. The results
%   do not depend on the number of processes, to the last bit. Without an output a table is printed.
%
%   Inputs:
%     problems  struct array, or cell of structs, as kelvane_read_colmap and kelvane_read_bal return it, with the fields
%       start, points, observations, intrinsics  the inputs of kelvane_refine, in its sizes, units and frames
%       name                                     text for the table, by default the number of the problem
%       options                                  options of kelvane_refine for this problem alone, a struct
%     Other fields are not looked at.
%
%   Options, by name in any capitals, or as a struct:
%     'Processes'    how many processes to run, default 1: one problem after the other, in this one. The engines 'serial' and
%                    'parfor' do not look at it.
%     'Engine'       what runs them:
%                      'auto'        (default) the one below that Connections, Processes and the host ask for
%                      'serial'      this process
%                      'parcellfun'  Octave: processes on this machine; needs the package parallel (octave-parallel)
%                      'netcellfun'  Octave: the servers of Connections, from the same package
%                      'parfor'      MATLAB: the current pool, which may be that of a cluster. In Octave parfor runs one
%                                    problem after the other.
%     'Connections'  what pconnect returned; each server runs as many processes as it has processors (see network_set)
%     'Progress'     'auto' (default): a bar where there is a screen, otherwise a line; 'bar', 'line' or 'off'
%     All options of kelvane_refine, for every problem that has none of its own.
%
%   results is a 1 x n struct array with the fields
%     name                             that of the problem
%     pose, info                       what kelvane_refine returned; [] after an error
%     exitflag, rms_before, rms_after  from info; NaN after an error
%     error, identifier                the error's message and identifier, '' without one
%
%   Servers of Octave must run the same version of the package, and find this folder and that of the built module under the
%   same names as here, on a shared disk. pserver starts one. Debian's cannot switch off authentication through pserver's
%   options, and has none: start octave-pserver --octave-binary=... --no-auth on each machine instead, as an ordinary user,
%   in a network of your own: whoever reaches its ports can run anything.
%
%   MATLAB's pools of threads refuse MEX files: open one of processes, parpool('Processes'). Workers on other machines
%   get the files with addAttachedFiles(gcp, {folder of kelvane, kelvane_mex.mexa64}). (By MATLAB's documents; not run.)
%
%   Example:
%     points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     for k = 1:3
%       truth = kelvane_pose([0 0 0, 0.1 * k, 0, -4], 'rotation_vector', 'world_from_camera');
%       problems(k) = struct('start', truth, 'points', points, 'intrinsics', [500 320 240], ...
%                            'observations', kelvane_project(truth, points, [500 320 240]));
%       problems(k).start.centre = truth.centre + [0.2; -0.1; 0.1];
%     end
%     problems(2).points(3) = NaN;
%     results = kelvane_batch(problems, 'Progress', 'off');
%     fprintf('x = %.6f\n', results(3).pose.centre(1));
%     fprintf('problem 2: %s\n', results(2).error);
%   Output:
%     x = 0.300000
%     problem 2: points(3, 1) is NaN. All of it must be finite numbers.
%
%   See also kelvane_refine, kelvane_read_colmap, kelvane_read_bal, kelvane_plot.

% SPDX-License-Identifier: BSD-3-Clause
% Many refinements by the engines that the hosts have.
function results = kelvane_batch(problems, varargin)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_batch needs problems, a struct array.');
  end
  problems = list_of_problems(problems);
  [batch, options] = batch_options(varargin);
  switch batch.Engine
    case 'serial'
      engine = @(some) cellfun(@(problem) refined_row(problem, options), some, 'UniformOutput', false);
    case 'parcellfun'
      engine = @(some) rows_by_parcellfun(some, options, batch.Processes);
    case 'netcellfun'
      engine = @(some) rows_by_netcellfun(some, options, batch.Connections);
    case 'parfor'
      engine = @(some) rows_by_parfor(some, options);
  end
  rows = in_rounds(engine, problems, batch);
  results = [rows{:}];
  if isempty(results)
    results = struct('name', {}, 'pose', {}, 'info', {}, 'exitflag', {}, 'rms_before', {}, 'rms_after', {}, 'error', {}, ...
                     'identifier', {});
  end
  if nargout == 0
    print_batch(results);
    clear results
  end
end

% The problems in rounds, with a look at the progress after each: about ten of them, so that waiting for the last of a
% round costs little.
function rows = in_rounds(engine, problems, batch)
  n = numel(problems);
  size_of_round = n;
  if ~strcmp(batch.Progress, 'off')
    size_of_round = max(batch.Processes, ceil(n / 10));
  end
  rows = cell(1, n);
  show = batch_progress(batch.Progress, n);
  for first = 1:max(1, size_of_round):n
    last = min(n, first + size_of_round - 1);
    rows(first:last) = engine(problems(first:last));
    show(last, sum(cellfun(@(row) ~isempty(row.error), rows(1:last))));
  end
end

% A cell of structs with all fields that a refinement needs and a name.
function problems = list_of_problems(problems)
  if isstruct(problems)
    problems = num2cell(problems);
  end
  if ~iscell(problems) || ~all(cellfun(@isstruct, problems(:)))
    error('kelvane:problems', 'problems must be a struct array or a cell of structs; this is of class %s.', class(problems));
  end
  problems = reshape(problems, 1, []);
  for k = 1:numel(problems)
    needed = {'start', 'points', 'observations', 'intrinsics'};
    missing = find(~isfield(problems{k}, needed), 1);
    if ~isempty(missing)
      error('kelvane:problems', 'problems(%d) has no field ''%s''.', k, needed{missing});
    end
    if ~isfield(problems{k}, 'name') || isempty(problems{k}.name)
      problems{k}.name = sprintf('%d', k);
    end
    problems{k}.name = checked_text(problems{k}.name, sprintf('problems(%d).name', k));
  end
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

%!test  % each row is what kelvane_refine returns, whatever the engine
%! problems = some_problems(5);
%! results = kelvane_batch(problems, 'Progress', 'off', 'MaxIterations', 3);
%! for k = 1:5
%!   p = problems(k);
%!   [pose, info] = kelvane_refine(p.start, p.points, p.observations, p.intrinsics, 'MaxIterations', 3);
%!   assert(isequal(results(k).pose, pose) && isequal(results(k).info, info));
%!   assert([results(k).exitflag, results(k).rms_before, results(k).rms_after], ...
%!          [info.exitflag, info.rms_before, info.rms_after]);
%!   assert({results(k).name, results(k).error}, {sprintf('%d', k), ''});
%! end
%! assert(isequal(kelvane_batch(problems, 'Progress', 'off', 'MaxIterations', 3, 'Engine', 'parfor'), results));
%! assert(isequal(kelvane_batch(num2cell(problems)', 'Progress', 'off', 'MaxIterations', 3), results));

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

%!test  % options of one problem go before those of all
%! problems = some_problems(2);
%! problems(2).options = struct('MaxIterations', 0, 'OutputForm', 'colmap');
%! results = kelvane_batch(problems, 'Progress', 'off', struct('MaxIterations', 2));
%! assert([results(1).info.iterations, results(2).info.iterations], [2, 0]);
%! assert(isstruct(results(1).pose) && iscell(results(2).pose));

%!test  % no problems, no results; still with the fields
%! results = kelvane_batch(struct([]), 'Progress', 'off');
%! assert(isempty(results) && isfield(results, 'rms_after'));

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
%!error <problems\(1\).name must be a text; this is of class double> kelvane_batch(setfield(some_problems(1), 'name', 7))
%!error <Connections must be what pconnect returned> kelvane_batch(some_problems(1), 'Connections', 2)
%!error <'Proceses' is not an option of kelvane_batch. Did you mean 'Processes'> kelvane_batch(some_problems(1), 'Proceses', 2)
%!error <'hubert' is not a loss> kelvane_batch(some_problems(1), 'Loss', 'hubert')
%!error <StepTolerance must be a number of 0 or more> kelvane_batch(some_problems(1), 'StepTolerance', -1)
%!error <Processes must be a whole number of 1 or more> kelvane_batch(some_problems(1), 'Processes', 1.5)
%!error <The engine netcellfun needs Connections> kelvane_batch(some_problems(1), 'Engine', 'netcellfun')
%!error <is not an engine. Did you mean 'parcellfun'> kelvane_batch(some_problems(1), 'Engine', 'parcelfun')
