% SPDX-License-Identifier: BSD-3-Clause
% The cameras of COLMAP's cameras.txt, 1 x n structs: id, image_size, K (3 x 3) and radial, the two coefficients of the
% distortion.
function cameras = read_colmap_cameras(file)
  [lines, has_data] = lines_of_file(file);
  cameras = struct('id', {}, 'image_size', {}, 'K', {}, 'radial', {});
  for k = find(has_data)
    camera = camera_of_line(lines{k}, file, k);
    if any([cameras.id] == camera.id)
      file_error(file, k, 'there are two cameras %d.', camera.id);
    end
    cameras(end + 1) = camera; %#ok<AGROW>
  end
end

function camera = camera_of_line(text, file, k)
  [id, rest] = numbers_in_line(text, file, k, 1);
  [model, rest] = strtok(rest);
  models = {'SIMPLE_PINHOLE', 'PINHOLE', 'SIMPLE_RADIAL', 'RADIAL'};
  i = find(strcmp(model, models));
  if isempty(i)
    file_error(file, k, ['camera %d has the model %s. Only SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL and RADIAL can be read; ' ...
               'for the others let COLMAP undistort the images first (image_undistorter).'], id, model);
  end
  num_parameters = [3, 4, 4, 5];
  v = numbers_in_line(rest, file, k);
  if numel(v) ~= 2 + num_parameters(i)
    file_error(file, k, 'a camera of model %s has width, height and %d parameters; here are %d numbers.', model, ...
               num_parameters(i), numel(v));
  end
  radial = [0, 0];
  if i == 2
    K = [v(3), 0, v(5); 0, v(4), v(6); 0, 0, 1];
  else
    K = [v(3), 0, v(4); 0, v(3), v(5); 0, 0, 1];
    radial(1:numel(v) - 5) = v(6:end);
  end
  if K(1, 1) <= 0 || K(2, 2) <= 0
    file_error(file, k, 'the focal length is %g; it must be above 0.', min(K(1, 1), K(2, 2)));
  end
  camera = struct('id', id, 'image_size', v(1:2), 'K', K, 'radial', radial);
end
