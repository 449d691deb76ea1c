% SPDX-License-Identifier: BSD-3-Clause
% Prints the results of kelvane_batch as a table, a line for each problem.
function print_batch(results)
  width = max([7, cellfun(@numel, {results.name})]);
  fprintf('%-*s %8s %12s %12s %10s  %s\n', width, 'problem', 'points', 'RMS before', 'RMS after', 'iterations', 'ended');
  for row = results
    if isempty(row.error)
      fprintf('%-*s %8d %12.5g %12.5g %10d  %s\n', width, row.name, size(row.info.points, 2), row.rms_before, ...
              row.rms_after, row.info.iterations, row.info.message);
    else
      fprintf('%-*s %8s %12s %12s %10s  %s\n', width, row.name, '', '', '', '', row.error);
    end
  end
  failed = sum(~cellfun(@isempty, {results.error}));
  fprintf('%d of %d converged, %d with an error.\n', sum([results.exitflag] > 0), numel(results), failed);
end
