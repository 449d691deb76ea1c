% SPDX-License-Identifier: BSD-3-Clause
% The options of kelvane_batch: its own, checked and with the engine chosen, and those of kelvane_refine.
function [batch, options] = batch_options(given)
  batch = struct('Threads', 0, 'Processes', 1, 'Engine', 'auto', 'Connections', [], 'Progress', 'auto');
  all_options = refine_options({});
  names = fieldnames(batch);
  for k = 1:numel(names)
    all_options.(names{k}) = batch.(names{k});
  end
  all_options = parse_options('kelvane_batch', all_options, given);
  for k = 1:numel(names)
    batch.(names{k}) = all_options.(names{k});
  end
  options = refine_options({}, rmfield(all_options, names));
  call_engine('refine', {}, {}, {}, {}, options);  % checks them
  batch = checked(batch);
  batch.size_of_slice = 32;  % of problems for a call of kelvane_engine, to begin with; see rows_by_threads
end

function batch = checked(batch)
  check_whole(batch.Threads, 'Threads', 0);
  check_whole(batch.Processes, 'Processes', 1);
  engines = {'auto', 'threads', 'serial', 'parcellfun', 'netcellfun', 'parfor'};
  batch.Engine = one_of(batch.Engine, engines, 'kelvane:option', 'engine');
  batch.Progress = one_of(batch.Progress, {'auto', 'bar', 'line', 'off'}, 'kelvane:option', 'kind of progress');
  if strcmp(batch.Engine, 'auto')
    batch.Engine = engine_for(batch);
  end
  switch batch.Engine
    case 'serial'
      batch.Engine = 'threads';
      batch.Threads = 1;
    case 'netcellfun'
      check_connections(batch.Connections);
  end
end

function check_whole(n, name, least)
  if ~isnumeric(n) || ~isscalar(n) || ~isreal(n) || ~(n >= least && n < 2^31) || n ~= round(n)
    error('kelvane:option', '%s must be a whole number of %d or more.', name, least);
  end
end

function check_connections(connections)
  if isempty(connections)
    error('kelvane:option', 'The engine netcellfun needs Connections, which pconnect returns.');
  elseif isnumeric(connections) || iscell(connections) || ischar(connections)
    error('kelvane:option', 'Connections must be what pconnect returned; this is of class %s.', class(connections));
  end
end

function engine = engine_for(batch)
  if ~isempty(batch.Connections)
    engine = 'netcellfun';
  elseif batch.Processes == 1
    engine = 'threads';
  elseif exist('OCTAVE_VERSION', 'builtin')
    engine = 'parcellfun';
  else
    engine = 'parfor';
  end
end
