% SPDX-License-Identifier: BSD-3-Clause
% Draws what race returns, and saves the picture. Curves end at the rounding of the RMS.
function plot_race(view, names, excess, file)
  styles = {'-o', '-s', '-x', '-d', '-^', '-+', '-v'};
  colors = [0, 0.45, 0.70; 0.84, 0.37, 0; 0, 0.62, 0.45; 0.35, 0.35, 0.35; 0.80, 0.47, 0.65; 0.90, 0.62, 0; 0.34, 0.71, 0.91];
  sizes = [9, 6, 6, 5, 6, 8, 6];
  rounding = 1e-14;
  last = size(excess, 2) - 1;
  f = new_picture();
  for k = 1:numel(names)
    curve = excess(k, :);
    arrived = find(curve < rounding, 1);
    if ~isempty(arrived)
      curve(arrived) = rounding;
      curve(arrived + 1:end) = NaN;
    end
    semilogy(0:last, curve, styles{k}, 'color', colors(k, :), 'markersize', sizes(k));
    hold on;
  end
  step = 10^1.5;
  draw_legend(names, styles, colors, sizes, [6.6, 6.95, 7.3], 7.6, 1e-1 ./ step.^(0:numel(names) - 1));
  hold off;
  axis([-0.2, last + 0.2, rounding, 1e4]);
  exponents = -14:2:4;
  labels = arrayfun(@(exponent) sprintf('10^{%d}', exponent), exponents, 'UniformOutput', false);
  set(gca, 'box', 'on', 'xtick', 0:last, 'ytick', 10.^exponents, 'yticklabel', labels, 'ygrid', 'on', ...
      'yminorgrid', 'off', 'gridcolor', [0.4, 0.4, 0.4]);
  xlabel('iteration (one for each call)');
  ylabel('RMS above the least (pixels)');
  title(sprintf('View %d: all pixel types side by side', view.id), 'fontsize', 9);
  save_picture(f, file, [900, 600]);
end
