% SPDX-License-Identifier: BSD-3-Clause
% Loads the module, calls it, and unloads it again, over and over. Memory must stay as it is; prints it at the end.
function loads_and_unloads(num_cycles)
  inputs = valid_inputs();
  x = kelvane_mex(inputs{:});
  cycles(inputs, x, 100);
  clear kelvane_mex
  assert(num_mapped(), 0);
  before = resident_kilobytes();
  cycles(inputs, x, num_cycles);
  after = resident_kilobytes();
  assert(num_mapped(), 1);  % of the last call
  fprintf('%d loads and unloads: resident %d -> %d kB\n', num_cycles, before, after);
  assert(after - before < 2000);  % a kilobyte lost each time would be more
end

function cycles(inputs, x, count)
  for k = 1:count
    clear kelvane_mex
    y = kelvane_mex(inputs{:});
    if ~isequal(x, y)
      error('call after load %d differs', k);
    end
    if mod(k, 10) == 0
      clear kelvane_mex
      caught({});
    end
  end
end

function count = num_mapped()
  count = numel(regexp(fileread('/proc/self/maps'), 'r-xp [^\n]*kelvane_mex.mex'));  % each has one part with code
end

function kilobytes = resident_kilobytes()
  text = fileread('/proc/self/status');
  kilobytes = str2double(regexp(text, 'VmRSS:\s+(\d+)', 'tokens', 'once'){1});
end
