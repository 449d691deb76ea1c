% SPDX-License-Identifier: BSD-3-Clause
% Draws the world's axes, a camera with its own, its image plane and one point, from the side, and saves the picture.
function plot_frames(pose, X, intrinsics, file)
  world_color = [0.25, 0.25, 0.25];
  camera_color = [0, 0.45, 0.70];
  point_color = [0.84, 0.37, 0];
  R = pose.rotation;
  t = pose.centre;
  f = new_picture(6);
  axes('position', [0.02, 0.03, 0.96, 0.94]);
  hold on;
  axis([-0.45, 3.45, -0.45, 1.75]);
  names = 'XYZ';
  for k = 1:3
    draw_arrow(seen([0; 0; 0]), seen(0.8 * (1:3 == k)'), world_color, names(k));
  end
  text(-0.05, -0.17, 'world', 'color', world_color, 'horizontalalignment', 'right');
  draw_image_plane(R, t, intrinsics, camera_color);
  draw_arrow(seen([0; 0; 0]), seen(t), world_color, 't', seen(t / 2) + [-0.1; 0.06]);
  plot_line(t, X, '-', point_color);
  names = {'x', 'y', 'z, forward'};
  lengths = [0.5, 0.5, 1.6];
  shifts = [0, 0, 0.22; -0.09, -0.09, 0];
  for k = 1:3
    tip = seen(t + lengths(k) * R(:, k));
    draw_arrow(seen(t), tip, camera_color, names{k}, tip + shifts(:, k));
  end
  label(t, [-0.05; 0.09], 'camera', camera_color, 'right');
  mark(X, point_color);
  label(X, [0; 0.1], 'point X;  p = R^T (X - t)', point_color, 'center');
  p = R' * (X - t);
  mark(t + 0.9 * (X - t) / p(3), point_color);
  label(t + 0.9 * (X - t) / p(3), [0; 0.09], '(u, v)', point_color, 'right');
  axis off;
  save_picture(f, file, [1000, 570]);
end

% Where the corners of a 640 x 480 image are at the depth 0.9, with the two directions of its pixels.
function draw_image_plane(R, t, intrinsics, color)
  u = [0, 640, 640, 0, 0];
  v = [0, 0, 480, 480, 0];
  rays = [(u - intrinsics(2)) / intrinsics(1); (v - intrinsics(3)) / intrinsics(1); ones(1, 5)];
  corners = R * (0.9 * rays) + t;
  for k = 1:4
    plot_line(corners(:, k), corners(:, k + 1), '-', color);
    plot_line(t, corners(:, k), ':', color);
  end
  along = corners(:, 1) + 0.45 * (corners(:, 2) - corners(:, 1));
  draw_arrow(seen(corners(:, 1)), seen(along), color, 'u', seen(along) + [0; 0.09]);
  along = corners(:, 1) + 0.45 * (corners(:, 4) - corners(:, 1));
  draw_arrow(seen(corners(:, 1)), seen(along), color, 'v', seen(along) + [-0.08; 0]);
end

% From the front right and above, without perspective.
function q = seen(X)
  turn = 35 * pi / 180;
  rise = 22 * pi / 180;
  q = [cos(turn), sin(turn), 0; -sin(turn) * sin(rise), cos(turn) * sin(rise), cos(rise)] * X;
end

function plot_line(from, to, style, color)
  ends = seen([from, to]);
  plot(ends(1, :), ends(2, :), style, 'color', color);
end

function mark(X, color)
  at = seen(X);
  plot(at(1), at(2), 'o', 'color', color, 'markersize', 5, 'markerfacecolor', color);
end

function label(X, shift, name, color, alignment)
  at = seen(X) + shift;
  text(at(1), at(2), name, 'color', color, 'horizontalalignment', alignment);
end
