% SPDX-License-Identifier: BSD-3-Clause
% Writes a COLMAP model of 12 photographs of a house (10 wide and deep, 6 high, the ridge at 9) into a folder: one camera with
% radial distortion, pixels with noise of half a pixel and two decimals.
function write_house_model(folder)
  [points, normals] = house_points();
  f = 900; cx = 640; cy = 480; k1 = -0.08;
  write_lines(folder, 'cameras.txt', {sprintf('1 SIMPLE_RADIAL 1280 960 %g %g %g %g', f, cx, cy, k1)});
  images = {'# two lines for each image'};
  for i = 1:12
    [Q, s] = looking_at_house(i);
    p = Q * points + s;
    x = p(1:2, :) ./ p(3, :);
    pixels = f * x .* (1 + k1 * sum(x.^2, 1)) + [cx; cy];
    pixels = pixels + 0.5 * repeatable_normal(2, size(points, 2), i);
    faces = sum(normals .* (-Q' * s - points), 1) > 0;
    seen = find(faces & p(3, :) > 0 & all(pixels > 0, 1) & pixels(1, :) < 1280 & pixels(2, :) < 960);
    q = kelvane_pose({Q, s}, 'rotation_translation', 'camera_from_world', 'colmap');
    images{end + 1} = sprintf('%d%s%s 1 house_%02d.jpg', i, sprintf(' %.9g', q{1}), sprintf(' %.9g', q{2}), i); %#ok<AGROW>
    images{end + 1} = strtrim(sprintf('%.2f %.2f %d ', [pixels(:, seen); seen])); %#ok<AGROW>
  end
  write_lines(folder, 'images.txt', images);
  rows = cell(1, size(points, 2));
  for j = 1:numel(rows)
    rows{j} = sprintf('%d%s 128 128 128 0.5', j, sprintf(' %.9g', points(:, j)));
  end
  write_lines(folder, 'points3D.txt', rows);
end

% Lattices on the walls and the roof, z up, and which way each of their points looks.
function [points, normals] = house_points()
  [a, b] = meshgrid(linspace(-5, 5, 11), linspace(0, 6, 7));
  a = a(:)'; b = b(:)'; c = 5 * ones(size(a));
  walls = [a, a, c, -c; c, -c, a, a; b, b, b, b];
  normals = kron([0, 0, 1, -1; 1, -1, 0, 0; 0, 0, 0, 0], ones(1, numel(a)));
  [a, b] = meshgrid(linspace(-5, 5, 11), linspace(0, 5, 6));
  a = a(:)'; b = b(:)';
  roof = [a, a; 5 - b, b - 5; 6 + 3 * b / 5, 6 + 3 * b / 5];
  normals = [normals, kron([0, 0; 3, -3; 5, 5], ones(1, numel(a)))];
  points = [walls, roof];
end

% From a circle around it, at heights that go up and down, z of the camera towards the middle of the house.
function [Q, s] = looking_at_house(i)
  turn = 2 * pi * i / 12;
  centre = [18 * cos(turn); 18 * sin(turn); 5 + 3 * sin(3 * turn)];
  z = [0; 0; 4] - centre;
  z = z / norm(z);
  x = cross(z, [0; 0; 1]);
  x = x / norm(x);
  Q = [x, cross(z, x), z]';
  s = -Q * centre;
end

function write_lines(folder, name, lines)
  write_whole(fullfile(folder, name), sprintf('%s\n', lines{:}));
end
