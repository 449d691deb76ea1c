% SPDX-License-Identifier: BSD-3-Clause
% Stands before the true kelvane_engine and calls it. Fields of a start make it kill its process, always or as long as a file
% is there, which it removes; interrupt another process; raise an error; tell the number of the process as the problem's
% error; or come back as soon as it can, which the global num_calls_of_engine counts.
function varargout = kelvane_engine(varargin)
  starts = {};
  if strcmp(varargin{1}, 'refine')
    starts = varargin{2};
  end
  if any(has(starts, 'comes_back'))
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
  here = fileparts(mfilename('fullpath'));
  rmpath(here);
  restoring = onCleanup(@() addpath(here));
  [varargout{1:max(1, nargout)}] = kelvane_engine(varargin{:});
  telling = has(starts, 'tells_process');
  if any(telling)
    varargout{1}.identifier(telling) = {'kelvane:tests'};
    varargout{1}.message(telling) = {sprintf('process %d', getpid())};
    varargout{1}.is_found(telling) = false;
  end
end

function yes = has(starts, field)
  yes = cellfun(@(start) isfield(start, field), starts);
end

function die()
  system(sprintf('kill -9 %d', getpid()));
  pause(10);
end
