% SPDX-License-Identifier: BSD-3-Clause
% Puts what stands in for functions of the host, a folder below stand_ins, first on the path, as long as what it returns is
% there.
function restoring = stand_in(name)
  folder = fullfile(fileparts(which('run_tests')), 'stand_ins', name);
  warning('off', 'Octave:shadowed-function', 'local');
  addpath(folder);
  restoring = onCleanup(@() rmpath(folder));
end
