% SPDX-License-Identifier: BSD-3-Clause
% A legend below axes for what has been drawn, a cell of rows {handle, name, how many of them are shown, of how many}; where
% they are not all shown the name says so.
function add_legend(target, rows)
  rows = rows([rows{:, 3}] > 0, :);
  for k = 1:size(rows, 1)
    if rows{k, 3} < rows{k, 4}
      rows{k, 2} = sprintf('%s (%d of %d)', rows{k, 2:4});
    end
  end
  look = {'numcolumns', 2, 'fontsize', 0.9 * get(target, 'fontsize')};
  if is_gnuplot(target)
    small = min(0.9 * get(target, 'fontsize'), max(4, get(target, 'fontsize') / 2));  % print doubles it, and its lines' distance twice
    look = {'orientation', 'horizontal', 'fontsize', small};
  end
  legend(target, [rows{:, 1}], rows(:, 2)', 'location', 'southoutside', 'box', 'off', 'color', 'none', look{:});
end
