% SPDX-License-Identifier: BSD-3-Clause
% Draws the RMS of a view against the iteration for the types 0 to 3, and saves the picture.
function plot_convergence(view, names, num_iterations, file)
  styles = {'-o', '-s', '-x', '-d'};
  colors = [0, 0.45, 0.70; 0.84, 0.37, 0; 0, 0.62, 0.45; 0.35, 0.35, 0.35];
  sizes = [10, 5, 5, 4];
  f = new_picture();
  for type = 0:3
    rms = rms_by_iteration(view, type, num_iterations);
    semilogy(0:numel(rms) - 1, rms, styles{type + 1}, 'color', colors(type + 1, :), ...
             'markersize', sizes(type + 1));
    hold on;
  end
  draw_legend(names, styles, colors, sizes, [7.4, 7.75, 8.1], 8.4, [12, 6.5, 3.5, 1.9]);
  hold off;
  axis([-0.2, num_iterations + 0.2, 0.1, 1000]);
  set(gca, 'box', 'on', 'xtick', 0:num_iterations, 'ytick', 10.^(-1:3), 'ygrid', 'on', ...
      'yminorgrid', 'off', 'gridcolor', [0.4, 0.4, 0.4]);
  xlabel('iteration (one for each call)');
  ylabel('RMS (pixels)');
  title(sprintf('View %d: RMS from call to call', view.id), 'fontsize', 9);
  save_picture(f, file, [900, 600]);
end
