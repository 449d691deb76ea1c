% SPDX-License-Identifier: BSD-3-Clause
% The results of some problems, from servers of Octave's package parallel, which know public functions only: each runs
% kelvane_batch on one problem.
function rows = rows_by_netcellfun(problems, options, connections)
  load_parallel('netcellfun');
  folders = {fileparts(which('kelvane_batch')), fileparts(which('kelvane_mex'))};  % the module must come first
  folders = strrep(folders, '''', '''''');
  reval(sprintf('addpath(''%s''); addpath(''%s'');', folders{:}), connections);
  options.Progress = 'off';
  rows = netcellfun(connections, 'kelvane_batch', problems, repmat({options}, size(problems)), 'UniformOutput', false);
end
