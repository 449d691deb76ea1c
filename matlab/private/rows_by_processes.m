% SPDX-License-Identifier: BSD-3-Clause
% Does what verb says, 'refine' or 'estimate', to some problems in other processes, by the engine of batch: a row for each. options are those of all problems, which
% count where problems.options is empty throughout. batch returns with another engine where its own is lost. What comes back
% is how far each iteration has come, a few numbers; results, which may be larger than the problems, are made here of them.
function [rows, batch] = rows_by_processes(verb, problems, options, batch)
  switch batch.Engine
    case 'parcellfun'
      load_parallel('parcellfun');
      groups = groups_of(verb, problems, options, batch.Processes);
      answers = without_the_lost(@(some) by_parcellfun(some, batch.Processes), groups);
    case 'netcellfun'
      load_parallel('netcellfun');
      try
        groups = groups_of(verb, problems, options, prepared_servers(batch.Connections));
        answers = by_netcellfun(groups, batch.Connections);
      catch caught  % one broken connection closes all
        warning('kelvane:lostServers', 'The servers of Connections are lost (%s). Processes of this machine take over.', ...
                caught.message);
        batch.Engine = 'parcellfun';
        batch.Processes = nproc();
        [rows, batch] = rows_by_processes(verb, problems, options, batch);
        return;
      end
    case 'parfor'
      num_workers = workers_of_pool();
      groups = groups_of(verb, problems, options, num_workers);
      answers = without_the_lost(@(some) by_parfor(some, num_workers > 0), groups);
  end
  [rows, batch] = completed(verb, answers, cellfun('prodofsize', groups(:, 2)), problems, options, batch);
end

% The rows of groups of so many problems, whose answers are states or the reason of a loss. An error brings no state: it comes
% again at once.
function [rows, batch] = completed(verb, answers, sizes, problems, options, batch)
  states = cell(1, numel(problems));
  is_lost = false(1, numel(problems));
  rows = lost_rows('', numel(problems));
  ends = cumsum(sizes);
  for g = 1:numel(answers)
    k = ends(g) - sizes(g) + 1:ends(g);
    if ischar(answers{g})
      is_lost(k) = true;
      rows(k) = lost_rows(answers{g}, sizes(g));
    else
      states(k) = answers{g};
    end
  end
  if ~all(is_lost)
    [rows(~is_lost), batch] = rows_by_threads(verb, problems(~is_lost), options, batch, states(~is_lost));
  end
  is_foreign = strcmp({rows.identifier}, 'kelvane:state');  % another processor may round a logarithm in another way
  if any(is_foreign)
    [rows(is_foreign), batch] = rows_by_threads(verb, problems(is_foreign), options, batch);
  end
end

% Inputs of kelvane_engine, a row for each group of problems. Eight groups a worker: who is done takes another one, so that
% none waits for long at the end; and what a group costs by itself, a millisecond, is little beside problems worth a process.
function groups = groups_of(verb, problems, options, num_workers)
  n = numel(problems);
  ends = round(linspace(0, n, min(n, 8 * max(1, num_workers)) + 1));
  for g = numel(ends) - 1:-1:1
    some = problems(ends(g) + 1:ends(g + 1));
    own = {some.options};
    if isempty(own{1})
      own = options;
    end
    if strcmp(verb, 'refine')
      groups(g, :) = {'descend', {some.start}, {some.points}, {some.observations}, {some.intrinsics}, own};
    else
      groups(g, :) = {'search', {some.points}, {some.observations}, {some.intrinsics}, own};
    end
  end
end

% The answer for each group. Where a worker dies an engine fails as a whole and does not say which one it was: both halves
% of the groups are run again, and halves of these, until the group that it died of stands alone. It is lost; its answer is
% the reason.
function answers = without_the_lost(run, groups)
  try
    answers = run(groups);
  catch caught
    n = size(groups, 1);
    if strcmp(caught.identifier, 'kelvane:interrupted')
      rethrow(caught);
    elseif n == 1
      answers = {caught.message};
    else
      half = ceil(n / 2);
      answers = [without_the_lost(run, groups(1:half, :)), without_the_lost(run, groups(half + 1:n, :))];
    end
  end
end

% Of n problems that were sent together.
function rows = lost_rows(reason, n)
  message = sprintf(['The process with this problem is lost: killed, crashed or out of memory (%s). Other problems that ' ...
                     'were sent with it: %d.'], reason, n - 1);
  rows = repmat(struct('pose', [], 'info', [], 'exitflag', NaN, 'rms_before', NaN, 'rms_after', NaN, 'error', message, ...
                       'identifier', 'kelvane:lostProcess', 'state', []), 1, n);
end

% An error in a worker is an answer as well; parcellfun does not tell which one. To it Ctrl-C is the same as a worker that has
% died.
function answers = by_parcellfun(groups, num_processes)
  inputs = num2cell(groups, 1);
  try
    answers = parcellfun(num_processes, sendable(), inputs{:}, 'UniformOutput', false, 'VerboseLevel', 0, ...
                         'ErrorHandler', @(varargin) 'an error in the process')';
  catch caught
    if ~was_child_killed()
      error('kelvane:interrupted', 'The other processes are interrupted: %s', caught.message);
    end
    rethrow(caught);
  end
end

% Whether a process that this one has begun was ended by a signal. Where the system does not tell, it is taken for granted.
function yes = was_child_killed()
  pause(0.1);  % who dies closes its pipes some time before
  files = glob('/proc/self/task/*/children');
  yes = isempty(files);
  for k = 1:numel(files)
    for child = sscanf(fileread(files{k}), '%d')'
      state = fileread(sprintf('/proc/%d/stat', child));
      state = strsplit(strtrim(state(find(state == ')', 1, 'last') + 2:end)), ' ');
      yes = yes || (strcmp(state{1}, 'Z') && mod(str2double(state{end}), 128) > 0);
    end
  end
end

function answers = by_netcellfun(groups, connections)
  inputs = num2cell(groups, 1);
  answers = netcellfun(connections, sendable(), inputs{:}, 'UniformOutput', false)';
end

% The module as other processes can be told of it. Octave crashes at its end if the package parallel has its name or handle.
function call = sendable()
  call = @(varargin) kelvane_engine(varargin{:});
end

% A pool that is lost for good leaves nothing to do: this process must not die of what its workers died of.
function answers = by_parfor(groups, needs_pool)
  if needs_pool && isempty(gcp())
    error('kelvane:lostProcess', 'the pool is gone');
  end
  answers = cell(1, size(groups, 1));
  parfor g = 1:numel(answers)
    answers{g} = kelvane_engine(groups{g, :});
  end
end

% How many workers MATLAB's current pool has. Octave runs parfor as a plain loop.
function n = workers_of_pool()
  n = 0;
  if exist('gcp', 'file')
    pool = gcp();
    if isa(pool, 'parallel.ThreadPool')
      error('kelvane:threadPool', ['The workers of the current pool are threads, which refuse MEX files. Close it with ' ...
            'delete(gcp) and open one of processes: parpool(''Processes'').']);
    elseif ~isempty(pool)
      n = pool.NumWorkers;
    end
  end
end

% Tells the servers where the module is; how many processes they run.
function n = prepared_servers(connections)
  load_parallel('netcellfun');
  servers = network_get_info(connections);
  servers = servers(~[servers.local_machine]);
  n = [servers.nlocaljobs];  % 0: one for each processor
  n = sum(n) + sum([servers(n == 0).nproc]);
  folder = strrep(fileparts(which('kelvane_engine')), '''', '''''');
  reval(sprintf('addpath(''%s'');', folder), connections);
end

% Loads Octave's package parallel unless a function of it is there already.
function load_parallel(name)
  if exist(name, 'file')
    return;
  end
  if ~exist('OCTAVE_VERSION', 'builtin')
    error('kelvane:noParallel', 'The engine %s is one of Octave''s; in MATLAB there is ''parfor''.', name);
  end
  try
    pkg('load', 'parallel');
  catch
    error('kelvane:noParallel', ['The engine %s needs Octave''s package parallel: on Debian apt-get install ' ...
          'octave-parallel, elsewhere pkg install -forge struct parallel.'], name);
  end
end
