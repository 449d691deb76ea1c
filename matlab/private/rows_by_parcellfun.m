% SPDX-License-Identifier: BSD-3-Clause
% The results of some problems, from processes on this machine that Octave's package parallel starts. They know public
% functions only: each runs kelvane_batch on one problem.
function rows = rows_by_parcellfun(problems, options, num_processes)
  load_parallel('parcellfun');
  options.Progress = 'off';
  rows = parcellfun(num_processes, 'kelvane_batch', problems, repmat({options}, size(problems)), 'UniformOutput', false, ...
                    'VerboseLevel', 0);
end
