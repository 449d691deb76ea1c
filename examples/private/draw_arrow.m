% SPDX-License-Identifier: BSD-3-Clause
% Draws an arrow from one point of the current axes to another, and a name at `at` (beside its head unless given).
function draw_arrow(from, to, color, name, at)
  way = (to - from) / norm(to - from);
  across = [-way(2); way(1)];
  limits = axis();
  head = 0.022 * (limits(2) - limits(1));
  plot([from(1), to(1)], [from(2), to(2)], '-', 'color', color);
  wings = [to - head * way + 0.4 * head * across, to, to - head * way - 0.4 * head * across];
  plot(wings(1, :), wings(2, :), '-', 'color', color);
  if nargin < 5
    at = to + 1.5 * head * way;
  end
  text(at(1), at(2), name, 'color', color, 'horizontalalignment', 'center');
end
