% SPDX-License-Identifier: BSD-3-Clause
% Prints what race returns, a line for each iteration and a column for each type. What is left when a type has found the
% least RMS is rounding.
function print_race(view, names, excess)
  rounding = 1e-13;
  fprintf('View %d: pixels above the least RMS, one iteration in a call\n', view.id);
  fprintf('%9s', 'iteration');
  fprintf(' %14s', names{:});
  fprintf('\n');
  for i = 1:size(excess, 2)
    fprintf('%9d', i - 1);
    for k = 1:numel(names)
      if abs(excess(k, i)) < rounding
        fprintf(' %14s', 'least');
      else
        fprintf(' %14.2g', excess(k, i));
      end
    end
    fprintf('\n');
  end
end
