% SPDX-License-Identifier: BSD-3-Clause
% Draws the observed and the predicted corners of a view before and after its refinement, and saves the picture.
function plot_corners(view, type, file)
  keep_going = [0, 0, -1e38, 0];
  poses = refine_until_still(view, type, keep_going, 50);
  f = new_picture();
  draw_panel([0.115, 0.17, 0.37, 0.73], view, type, poses(1, :), 'before');
  draw_panel([0.60, 0.17, 0.37, 0.73], view, type, poses(end, :), 'after');
  save_picture(f, file, [1000, 460]);
end

function draw_panel(position, view, type, x, name)
  names = {'observed', 'predicted', 'difference'};
  styles = {'o', 'x', '-'};
  colors = [0, 0.45, 0.70; 0.84, 0.37, 0; 0.6, 0.6, 0.6];
  sizes = [4, 4, 1];
  seen = view.pixels;
  predicted = predicted_pixels(view, type, x);
  axes('position', position);
  hold on;
  plot([seen(1, :); predicted(1, :)], [seen(2, :); predicted(2, :)], styles{3}, 'color', colors(3, :));
  plot(seen(1, :), seen(2, :), styles{1}, 'color', colors(1, :), 'markersize', sizes(1));
  plot(predicted(1, :), predicted(2, :), styles{2}, 'color', colors(2, :), 'markersize', sizes(2));
  draw_legend(names, styles, colors, sizes, [25, 45, 65], 85, [365, 405, 445]);
  hold off;
  axis equal;
  axis([0, view.image_size(1), 0, view.image_size(2)]);
  set(gca, 'ydir', 'reverse', 'box', 'on', 'xtick', 0:160:640, 'ytick', 0:160:480);  % v points down
  xlabel('u (pixels)');
  ylabel('v (pixels)');
  title(sprintf('View %d %s: RMS %.2f pixels', view.id, name, rms_of_view(view, type, x)), 'fontsize', 9);
end
