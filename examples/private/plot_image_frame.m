% SPDX-License-Identifier: BSD-3-Clause
% Draws the image with its two axes, the principal point and some pixels, and the top left pixel as three programs count
% it, and saves the picture.
function plot_image_frame(pixels, intrinsics, file)
  dark = [0.25, 0.25, 0.25];
  blue = [0, 0.45, 0.70];
  orange = [0.84, 0.37, 0];
  f = new_picture(5);
  axes('position', [0.06, 0.06, 0.54, 0.86]);
  hold on;
  axis equal;
  axis([-90, 700, -90, 530]);
  set(gca, 'ydir', 'reverse');
  plot([0, 640, 640, 0, 0], [0, 0, 480, 480, 0], '-', 'color', dark);
  draw_arrow([0; 0], [160; 0], blue, 'u', [185; -25]);
  draw_arrow([0; 0], [0; 160], blue, 'v', [-30; 160]);
  plot(intrinsics(2), intrinsics(3), '+', 'color', blue, 'markersize', 10);
  text(intrinsics(2) + 12, intrinsics(3) + 22, '(k13, k23)', 'color', blue);
  plot(pixels(1, :), pixels(2, :), 'o', 'color', orange, 'markersize', 5, 'markerfacecolor', orange);
  text(pixels(1, 1) - 15, pixels(2, 1) - 22, sprintf('(%.0f, %.0f)', pixels(:, 1)), 'color', orange);
  text(0, 512, 'u = k11 p_x / p_z + k13,   v = k11 p_y / p_z + k23', 'color', dark);
  title('The image');
  axis off;
  draw_corner(dark, blue);
  save_picture(f, file, [1400, 700]);
end

% Four pixels at the top left, and what the centre of the first is called.
function draw_corner(dark, blue)
  axes('position', [0.66, 0.06, 0.32, 0.86]);
  hold on;
  axis equal;
  axis([-0.35, 2.6, -0.6, 3]);
  set(gca, 'ydir', 'reverse');
  for k = 0:2
    plot([0, 2], [k, k], '-', 'color', dark);
    plot([k, k], [0, 2], '-', 'color', dark);
  end
  plot(0.5, 0.5, 'o', 'color', blue, 'markersize', 5, 'markerfacecolor', blue);
  names = {'OpenCV (0, 0)', 'COLMAP (0.5, 0.5)', 'MATLAB (1, 1)'};
  for k = 1:3
    text(0, 2.1 + 0.27 * k, names{k}, 'color', blue);
  end
  title('Centre of the top left pixel');
  axis off;
end
