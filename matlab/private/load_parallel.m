% SPDX-License-Identifier: BSD-3-Clause
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
