% SPDX-License-Identifier: BSD-3-Clause
% COMPARE_DAILY_USE  Time kelvane_refine and kelvane_batch in ten-iteration calls of a module, and print a Markdown table.
%
%   compare_daily_use(ours, others, seconds)
%
%   ours     cell of the folders, module first, that hold this version
%   others   the same of another one, whose kelvane_mex is the measure; {''} for this version's own
%   seconds  how long each row may take
%
%   Example:  compare_daily_use({'build/benchmark', 'matlab'}, {''}, 3)
%
%   See also compare_in_octave.
function compare_daily_use(ours, others, seconds)
  warning('off', 'Octave:shadowed-function', 'local');
  versions = {ours, others};
  if isempty(others{1})
    versions = {ours};
  end
  fprintf('## Daily use in Octave\n\nTimes of a call in ten-iteration calls of %s; medians of interleaved runs:\n\n', ...
          {'`kelvane_mex`', 'the older `kelvane_mex`'}{numel(versions)});
  fprintf('| what | N | such a call (ms) | older version | this version | goal |\n| --- | --: | --: | --: | --: | --: |\n');
  for row = rows_of_table()'
    [call, ratios] = compare(versions, row{3}, row{2}, seconds);
    fprintf('| %s | %d | %.3g | %s | %.3g | %s |\n', row{1}, row{2}, 1e3 * call, text_or_dash(ratios(2:end)), ratios(1), row{4});
  end
  threads_and_processes(ours, seconds);
end

function rows = rows_of_table()
  refine = @(varargin) @(p) kelvane_refine(p.start, p.points, p.observations, p.intrinsics, varargin{:});
  rows = {
    '`kelvane_refine`',                     54,     refine(),                '60'
    '`kelvane_refine`, Tukey',              54,     refine('Loss', 'tukey'), '90'
    '`kelvane_refine`',                     100000, refine(),                '3'
    '`kelvane_refine`, Tukey',              100000, refine('Loss', 'tukey'), '6'
    '`kelvane_batch`, a problem of 500',    100,    500,                     '4'};
end

function text = text_or_dash(ratios)
  text = '-';
  if ~isempty(ratios)
    text = sprintf('%.3g', ratios);
  end
end

% The time of the measuring call, and those of each version's own function in it. A number in place of a function is that
% of the problems of a batch.
function [measure, ratios] = compare(versions, what, N, seconds)
  [camera, points, pixels] = random_scene(N);
  start = kelvane_start(camera);
  problem = struct('start', start, 'points', points, 'observations', pixels, 'intrinsics', camera(7:9));
  times = [];
  begun = tic();
  while rows(times) < 3 || toc(begun) < seconds
    for k = numel(versions):-1:1
      leave = on_path(versions{k}); %#ok<NASGU>
      if isnumeric(what)
        own = @() batch_of(problem, what, k == 1);
        share = what;
      else
        own = @() what(problem);
        share = 1;
      end
      one(k) = seconds_of(own) / share;
      if k == numel(versions)
        call = seconds_of(@() kelvane_mex(camera, points, pixels));
      end
      clear leave
    end
    times(end + 1, :) = [call, one]; %#ok<AGROW>
  end
  measure = median(times(:, 1));
  ratios = median(times(:, 2:end) ./ times(:, 1), 1);
end

% On one thread; an older version has no other.
function results = batch_of(problem, n, has_threads)
  options = {'Progress', 'off', 'Threads', 1};
  results = kelvane_batch(repmat(problem, 1, n), options{1:2 + 2 * has_threads});
end

function start = kelvane_start(camera)
  start = struct('rotation', rotation_and_left_jacobian(camera(1:3)'), 'centre', camera(4:6)');
end

% Until the result is cleared.
function leave = on_path(folders)
  addpath(folders{:});
  clear('kelvane_mex', 'kelvane_refine', 'kelvane_batch', 'kelvane_engine');
  leave = onCleanup(@() rmpath(folders{:}));
end

% Of one call, after one that loads everything; for at least 20 ms.
function seconds = seconds_of(call)
  seconds_per_call(call, 1);
  num_calls = ceil(2e-2 / max(1e-6, seconds_per_call(call, 1)));
  seconds = seconds_per_call(call, num_calls);
end

function threads_and_processes(ours, seconds)
  leave = on_path(ours); %#ok<NASGU>
  [camera, points, pixels] = random_scene(100000);
  problem = struct('start', kelvane_start(camera), 'points', points, 'observations', pixels, 'intrinsics', camera(7:9));
  problems = repmat(problem, 1, 16);
  ways = {{'Threads', 1}, {'Threads', 2}};
  names = {'two threads'};
  goals = {'1.3'};
  if ~isempty(pkg('list', 'parallel'))
    ways{3} = {'Processes', 2};
    names{2} = 'two processes';
    goals{2} = '1.6';
  end
  times = [];
  begun = tic();
  while rows(times) < 3 || toc(begun) < seconds
    refine = @(way) kelvane_batch(problems, way{:}, 'Progress', 'off', 'Loss', 'tukey');
    times(end + 1, :) = cellfun(@(way) seconds_per_call(@() refine(way), 1), ways); %#ok<AGROW>
  end
  fprintf('\n`kelvane_batch` with Tukey''s loss, 16 problems of %.0f ms each, speed against one thread:\n\n', ...
          1e3 * median(times(:, 1)) / 16);
  fprintf('| how | speed | goal |\n| --- | --: | --: |\n');
  for k = 1:numel(names)
    fprintf('| %s | %.2f | %s |\n', names{k}, median(times(:, 1) ./ times(:, k + 1)), goals{k});
  end
  fprintf('\n');
end
