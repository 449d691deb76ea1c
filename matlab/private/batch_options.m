% SPDX-License-Identifier: BSD-3-Clause
% The options of kelvane_batch: its own, checked and with the engine chosen, and those of kelvane_refine, checked.
function [batch, options] = batch_options(given)
  batch = struct('Processes', 1, 'Engine', 'auto', 'Connections', [], 'Progress', 'auto');
  all_options = refine_options({});
  names = fieldnames(batch);
  for k = 1:numel(names)
    all_options.(names{k}) = batch.(names{k});
  end
  all_options = parse_options('kelvane_batch', all_options, given);
  for k = 1:numel(names)
    batch.(names{k}) = all_options.(names{k});
  end
  options = refine_options({rmfield(all_options, names)});
  robust_loss(options.Loss);
  batch = checked(batch);
end

function batch = checked(batch)
  n = batch.Processes;
  if ~isnumeric(n) || ~isscalar(n) || ~(n >= 1) || n ~= round(n)
    error('kelvane:option', 'Processes must be a whole number of 1 or more.');
  end
  engines = {'auto', 'serial', 'parcellfun', 'netcellfun', 'parfor'};
  batch.Engine = one_of(batch.Engine, engines, 'kelvane:option', 'engine');
  batch.Progress = one_of(batch.Progress, {'auto', 'bar', 'line', 'off'}, 'kelvane:option', 'kind of progress');
  if strcmp(batch.Engine, 'auto')
    batch.Engine = engine_for(batch);
  end
  if strcmp(batch.Engine, 'netcellfun')
    if isempty(batch.Connections)
      error('kelvane:option', 'The engine netcellfun needs Connections, which pconnect returns.');
    elseif isnumeric(batch.Connections) || iscell(batch.Connections) || ischar(batch.Connections)
      error('kelvane:option', 'Connections must be what pconnect returned; this is of class %s.', class(batch.Connections));
    end
    batch.Processes = max(batch.Processes, 4 * numel(batch.Connections));  % that a round keeps the servers busy
  end
end

function engine = engine_for(batch)
  if ~isempty(batch.Connections)
    engine = 'netcellfun';
  elseif batch.Processes == 1
    engine = 'serial';
  elseif exist('OCTAVE_VERSION', 'builtin')
    engine = 'parcellfun';
  else
    engine = 'parfor';
  end
end
