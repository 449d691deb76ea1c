% SPDX-License-Identifier: BSD-3-Clause
% The images of COLMAP's images.txt, 1 x n structs: id, name, pose (struct of kelvane_pose), camera (its id), pixels (2 x m)
% and point_ids (1 x m, -1 where no point belongs to a pixel), line (where it stands).
function images = read_colmap_images(file)
  [lines, has_data] = lines_of_file(file);
  images = struct('id', {}, 'name', {}, 'pose', {}, 'camera', {}, 'pixels', {}, 'point_ids', {}, 'line', {});
  k = 1;
  while k <= numel(lines)
    if ~has_data(k)
      k = k + 1;
      continue;
    end
    if k == numel(lines)
      file_error(file, k, 'the line with the pixels of this image is missing.');
    end
    image = image_of_lines(lines{k}, lines{k + 1}, file, k);
    if any([images.id] == image.id)
      file_error(file, k, 'there are two images %d.', image.id);
    end
    images(end + 1) = image; %#ok<AGROW>
    k = k + 2;
  end
end

function image = image_of_lines(header, pixels, file, k)
  [v, name] = numbers_in_line(header, file, k, 9);
  if norm(v(2:5)) < 1e-10
    file_error(file, k, 'the quaternion of image %d has the length 0.', v(1));
  end
  pose = kelvane_pose({v(2:5), v(6:8)}, 'colmap');
  seen = numbers_in_line(pixels, file, k + 1);
  if mod(numel(seen), 3) ~= 0
    file_error(file, k + 1, 'the pixels of image %d come as X, Y and POINT3D_ID; here are %d numbers.', v(1), numel(seen));
  end
  seen = reshape(seen, 3, []);
  image = struct('id', v(1), 'name', name, 'pose', pose, 'camera', v(9), 'pixels', seen(1:2, :), 'point_ids', seen(3, :), ...
                 'line', k);
end
