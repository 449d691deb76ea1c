% SPDX-License-Identifier: BSD-3-Clause
% Draws how far the RMS of each view is above the least one, types x iterations x views, as a part of it: a panel for each
% type and a line for each view. Saves the picture. Curves end at the rounding of the RMS.
function plot_types(above, types, file)
  colors = [0, 0.45, 0.70; 0.84, 0.37, 0; 0, 0.62, 0.45; 0.35, 0.35, 0.35; 0.80, 0.47, 0.65; 0.90, 0.62, 0];
  f = new_picture(4);
  for k = 1:numel(types)
    column = mod(k - 1, 4);
    row = floor((k - 1) / 4);
    axes('position', [0.085 + 0.235 * column, 0.60 - 0.465 * row, 0.195, 0.325]);
    for i = 1:size(above, 3)
      draw_curve(above(k, :, i), colors(i, :));
    end
    hold off;
    frame_panel(types(k), row, column);
  end
  draw_names(colors, size(above, 3));
  save_picture(f, file, [1500, 700]);
end

function draw_curve(above, color)
  rounding = 1e-13;
  arrived = find(above < rounding, 1);
  if ~isempty(arrived)
    above = [above(1:arrived - 1), rounding];
  end
  semilogy(0:numel(above) - 1, above, '-o', 'color', color, 'markersize', 3);
  hold on;
end

function frame_panel(type, row, column)
  exponents = -12:4:4;
  labels = arrayfun(@(exponent) sprintf('10^{%d}', exponent), exponents, 'UniformOutput', false);
  if column > 0
    labels = {};
  end
  axis([-0.3, 8.3, 1e-13, 1e4]);
  set(gca, 'box', 'on', 'xtick', 0:2:8, 'ytick', 10.^exponents, 'yticklabel', labels, 'ygrid', 'on', ...
      'yminorgrid', 'off', 'gridcolor', [0.4, 0.4, 0.4]);
  title(sprintf('%d  %s', type.number, type.name));
  if row == 1 || type.number == 3
    xlabel('iteration');
  end
  if column == 0
    ylabel('(RMS - least) / least');
  end
end

% Of the lines, in the place of an eighth panel.
function draw_names(colors, n)
  axes('position', [0.82, 0.06, 0.17, 0.36]);
  hold on;
  axis([0, 1, 0, 1]);
  axis off;
  names = arrayfun(@(i) sprintf('photograph %d', i), 1:n, 'UniformOutput', false);
  draw_legend(names, repmat({'-o'}, 1, n), colors, repmat(3, 1, n), [0, 0.2], 0.28, linspace(0.9, 0.1, n));
end
