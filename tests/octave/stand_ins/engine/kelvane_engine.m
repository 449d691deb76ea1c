% SPDX-License-Identifier: BSD-3-Clause
% Stands before the true kelvane_engine and calls it. Fields of a start make it kill its process, always or as long as a file
% is there, which it removes; interrupt another process; raise an error; write the number of a process that descends to a file;
% return the state of something else from there; refine no longer than it must, which the global num_calls_of_engine counts; or
% tell when it was left in the middle, as an estimate always does.
function varargout = kelvane_engine(varargin)
  starts = {};
  if any(strcmp(varargin{1}, {'refine', 'descend'}))
    starts = varargin{2};
  end
  if strcmp(varargin{1}, 'refine') && any(has(starts, 'comes_back'))
    global num_calls_of_engine %#ok<TLEV>
    num_calls_of_engine = num_calls_of_engine + 1;
    varargin{8} = 0;
  end
  if any(has(starts, 'kills_process'))
    die();
  end
  other = find(has(starts, 'interrupts_process'), 1);
  if ~isempty(other)
    pause(0.5);  % until it waits
    system(sprintf('kill -INT %d', starts{other}.interrupts_process));
    pause(1);
  elseif any(has(starts, 'raises_error'))
    error('kelvane:tests', 'raised in process %d', getpid());
  end
  once = find(has(starts, 'kills_process_once'), 1);
  if ~isempty(once) && exist(starts{once}.kills_process_once, 'file')
    delete(starts{once}.kills_process_once);
    die();
  end
  global true_engine %#ok<TLEV> % survives a change of the path, which costs more than most calls
  if isempty(true_engine)
    here = fileparts(mfilename('fullpath'));
    rmpath(here);
    true_engine = @kelvane_engine;
    addpath(here);
  end
  [varargout{1:max(1, nargout)}] = true_engine(varargin{:});
  tells = any(has(starts, 'tells_when_left')) || strcmp(varargin{1}, 'estimate');
  if tells && any(~cellfun('isempty', varargout{1}.state))
    disp('left in the middle');
    fflush(stdout);
  end
  if strcmp(varargin{1}, 'descend')
    cellfun(@(start) tell(start.tells_process), starts(has(starts, 'tells_process')));
    other = has(starts, 'spoils_state');
    varargout{1}(other) = cellfun(@(state) [state(1:end - 4), 2 * state(end - 3), state(end - 2:end)], varargout{1}(other), ...
                                  'UniformOutput', false);
  end
end

function tell(file)
  id = fopen(file, 'a');
  fprintf(id, '%d\n', getpid());
  fclose(id);
end

function yes = has(starts, field)
  yes = cellfun(@(start) isfield(start, field), starts);
end

function die()
  system(sprintf('kill -9 %d', getpid()));
  pause(10);
end
