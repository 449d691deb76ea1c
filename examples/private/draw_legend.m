% SPDX-License-Identifier: BSD-3-Clause
% Writes names beside samples of their markers into the current axes: name i at (x, y(i)), its marker to the left at
% marker_x. Legends of Octave's gnuplot toolkit cover the curves.
function draw_legend(names, styles, colors, sizes, marker_x, x, y)
  for i = 1:numel(names)
    plot(marker_x, y(i) * ones(size(marker_x)), styles{i}, 'color', colors(i, :), 'markersize', sizes(i));
    text(x, y(i), names{i});
  end
end
