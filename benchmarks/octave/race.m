% SPDX-License-Identifier: BSD-3-Clause
% race(title, names, table, seconds, clock): times calls in turn, and prints a Markdown table. names are those of the
% columns. A row of the cell table is a text and a cell of contestants, each {call, folders, share}: the path on which it is
% called, and by how many its time is divided; the last names may be missing. Each row takes so many seconds. The clock is
% the processor time of this process, unless another is given.
function race(title, names, table, seconds, clock)
  if nargin < 5
    clock = @() cputime();
  end
  fprintf('## %s\n\n%s in milliseconds, the others in times of it:\n\n| |%s\n', title, names{1}, sprintf(' %s |', names{:}));
  fprintf('| --- |%s\n', repmat(' --: |', size(names)));
  text = @(x, digits) sprintf('%.*g', max(digits, ceil(log10(x))), x);
  for k = 1:rows(table)
    times = times_of(table{k, 2}, seconds, clock);
    fprintf('| %s | %s |', table{k, 1}, text(1e3 * median(times(:, 1)), 3));
    for j = 2:columns(times)
      ratios = times(:, j) ./ times(:, 1);
      fprintf(' %s ± %s |', text(median(ratios), 3), text(diff(quantile(ratios, [0.25; 0.75])) / 2, 2));
    end
    fprintf('%s\n', repmat(' - |', 1, numel(names) - columns(times)));
  end
  fprintf('\n');
end

% A row for each repetition, in which all are called in turn, the first one last: its path is ours.
function times = times_of(contestants, seconds, clock)
  entered = '';
  times = [];
  begun = tic();
  while rows(times) < 3 || toc(begun) < seconds
    for k = [2:numel(contestants), 1]
      [call, folders, share] = contestants{k}{:};
      if !strcmp(entered, folders)
        addpath(folders);
        clear('-f', 'kelvane_*');
        entered = folders;
        x = call();  % loads everything
      end
      taken(k) = seconds_of(call, clock) / share;
    end
    times(end + 1, :) = taken;
  end
end

% Of one call, on average of at least 20 ms.
function seconds = seconds_of(call, clock)
  num_calls = 0;
  begun = tic();
  start = clock();
  while num_calls == 0 || toc(begun) < 0.02
    x = call();
    num_calls += 1;
  end
  seconds = (clock() - start) / num_calls;
end
