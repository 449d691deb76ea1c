% SPDX-License-Identifier: BSD-3-Clause
% Draws directions around a camera from above: points, one of them behind the image plane, the unit circle, and the
% chord between an observed and a predicted direction, which is what a refinement of directions makes small. Saves the
% picture.
function plot_directions(file)
  dark = [0.25, 0.25, 0.25];
  blue = [0, 0.45, 0.70];
  orange = [0.84, 0.37, 0];
  grey = [0.6, 0.6, 0.6];
  f = new_picture(6);
  axes('position', [0.02, 0.03, 0.96, 0.94]);
  hold on;
  axis equal;
  axis([-2.5, 2.5, -1.35, 2.2]);
  turn = linspace(0, 2 * pi, 181);
  plot(cos(turn), sin(turn), '-', 'color', grey);
  plot([-2.3, 2.3], [0, 0], ':', 'color', grey);
  text(-2.3, 0.09, 'p_z = 0: no pixel beyond', 'color', grey);
  draw_arrow([0; 0], [0; 1.75], blue, 'z');
  draw_arrow([0; 0], [0.6; 0], blue, 'x', [0.68; -0.1]);
  places = [1.55, -1.3, 1.75; 1.45, 1.2, -0.75];
  for place = places
    plot([0, place(1)], [0, place(2)], '-', 'color', grey);
    plot(place(1), place(2), 's', 'color', dark, 'markersize', 5, 'markerfacecolor', dark);
    predicted = place / norm(place);
    observed = [cos(0.2), -sin(0.2); sin(0.2), cos(0.2)] * predicted;
    plot([predicted(1), observed(1)], [predicted(2), observed(2)], '-', 'color', orange, 'linewidth', 3);
    plot(observed(1), observed(2), 'o', 'color', orange, 'markersize', 5);
    plot(predicted(1), predicted(2), 'x', 'color', orange, 'markersize', 7);
  end
  text(places(1, 1) + 0.1, places(2, 1), 'point', 'color', dark);
  text(places(1, 3) - 0.1, places(2, 3) - 0.17, 'behind the image plane', 'color', dark, ...
       'horizontalalignment', 'center');
  text(-1.55, -0.75, 'unit sphere', 'color', grey);
  text(-0.62, 2.05, 'x predicted, o observed, line: residual', 'color', orange);
  axis off;
  save_picture(f, file, [1000, 700]);
end
