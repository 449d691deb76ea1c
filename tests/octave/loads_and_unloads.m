% SPDX-License-Identifier: BSD-3-Clause
% Loads both modules, calls them, and unloads them again, over and over, in a long run twice as often. Memory must stay as it
% is; prints it at the end.
function loads_and_unloads(num_cycles)
  if ~isempty(getenv('KELVANE_LONG'))
    num_cycles = 2 * num_cycles;
  end
  inputs = valid_inputs();
  x = kelvane_mex(inputs{:});
  cycles(inputs, x, 100);
  clear kelvane_mex kelvane_engine
  assert(num_mapped(), 0);
  before = resident_kilobytes();
  cycles(inputs, x, num_cycles);
  after = resident_kilobytes();
  assert(num_mapped(), 2);  % of the last calls
  fprintf('%d loads and unloads: resident %d -> %d kB\n', num_cycles, before, after);
  assert(after - before < num_cycles);  % a kilobyte lost each time would be more
end

function cycles(inputs, x, count)
  questions = engine_calls();
  questions{1}{9} = 2;  % threads
  answer = kelvane_engine(questions{1}{:});
  for k = 1:count
    clear kelvane_mex kelvane_engine
    y = kelvane_mex(inputs{:});
    found = kelvane_engine(questions{1}{:});
    if ~isequal(x, y) || ~isequal(found.pose, answer.pose)
      error('call after load %d differs', k);
    end
    if mod(k, 10) == 0
      clear kelvane_mex kelvane_engine
      caught({});
      fail('kelvane_engine(''nothing'')', 'no ''nothing''');
    end
  end
end

function count = num_mapped()
  count = numel(regexp(fileread('/proc/self/maps'), 'r-xp [^\n]*kelvane_(mex|engine).mex'));  % each has one part with code
end

function kilobytes = resident_kilobytes()
  text = fileread('/proc/self/status');
  kilobytes = str2double(regexp(text, 'VmRSS:\s+(\d+)', 'tokens', 'once'){1});
end
