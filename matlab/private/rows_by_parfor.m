% SPDX-License-Identifier: BSD-3-Clause
% The results of some problems, from the workers of MATLAB's current pool; Octave runs parfor as a plain loop.
function rows = rows_by_parfor(problems, options)
  if exist('gcp', 'file')
    if isa(gcp(), 'parallel.ThreadPool')
      error('kelvane:threadPool', ['The workers of the current pool are threads, which refuse MEX files. Close it with ' ...
            'delete(gcp) and open one of processes: parpool(''Processes'').']);
    end
  end
  rows = cell(size(problems));
  parfor k = 1:numel(problems)
    rows{k} = refined_row(problems{k}, options);
  end
end
