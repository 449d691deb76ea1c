% SPDX-License-Identifier: BSD-3-Clause
% write_models(folder, num_images, num_points, num_seen, num_idle): the same random observations as COLMAP models in the
% folders text and binary, and in the file bal.txt. Each image sees num_seen points and has num_idle pixels without one
% (COLMAP); num_images * num_seen is a multiple of num_points.
function write_models(folder, num_images, num_points, num_seen, num_idle)
  cellfun(@mkdir, {folder, fullfile(folder, 'text'), fullfile(folder, 'binary')}, 'UniformOutput', false);
  raw = @(x) reshape(typecast(x(:), 'uint8'), [], columns(x));  % a record for each column
  same = @(record, n) repmat(typecast(record, 'uint8')(:), 1, n);
  points = randperm(num_points);
  X = [4 * rand(2, num_points) - 2; 6 + 2 * rand(1, num_points)];
  images = 1:num_images;
  t = rand(3, num_images);
  n = num_seen + num_idle;
  ids = points(mod((0:num_seen - 1)' + num_seen * (images - 1), num_points) + 1);
  pixels = 3000 * rand(2 * n, num_images);
  ids_of_pixels = [ids; -ones(num_idle, num_images)];
  num_views = num_images * num_seen / num_points;
  views = (0:num_points - 1) + num_points * (0:num_views - 1)';
  tracks = reshape([floor(views(:) / num_seen) + 1, mod(views(:), num_seen)]', 2 * num_views, num_points);

  texts = @(name, varargin) written(fullfile(folder, 'text', [name, '.txt']), @fprintf, varargin{:});
  texts('cameras', '1 SIMPLE_RADIAL 4000 3000 3200.5 2000 1500 -0.01\n');
  both = reshape(permute(cat(3, pixels(1:2:end, :), pixels(2:2:end, :), ids_of_pixels), [3, 1, 2]), 3 * n, num_images);
  texts('images', ['%d 1 0 0 0 %.17g %.17g %.17g 1 image_%05d.jpg\n', repmat('%.17g %.17g %d ', 1, n)(1:end - 1), '\n'], ...
        [images; t; images; both]);
  texts('points3D', ['%d %.17g %.17g %.17g 10 20 30 0.5', repmat(' %d %d', 1, num_views), '\n'], [points; X(:, points); tracks]);

  binary = @(name, records) written(fullfile(folder, 'binary', [name, '.bin']), @fwrite, records);
  binary('cameras', [same(uint64(1), 1); same(uint32(1), 1); same(int32(2), 1); same(uint64([4000, 3000]), 1); ...
                     same([3200.5, 2000, 1500, -0.01], 1)]);
  seen = [raw(reshape(pixels, 2, [])); raw(int64(ids_of_pixels(:)'))];
  names = [reshape(uint8(sprintf('image_%05d.jpg', images)), 15, []); same(uint8(0), num_images)];
  binary('images', [same(uint64(num_images), 1); [raw(uint32(images)); same([1, 0, 0, 0], num_images); raw(t); ...
                    same(uint32(1), num_images); names; same(uint64(n), num_images); reshape(seen, 24 * n, num_images)](:)]);
  binary('points3D', [same(uint64(num_points), 1); [raw(uint64(points)); raw(X(:, points)); same(uint8([10, 20, 30]), num_points); ...
                      same(0.5, num_points); same(uint64(num_views), num_points); raw(uint32(tracks))](:)]);

  observations = [kron(images - 1, ones(1, num_seen)); ids(:)' - 1; 600 * rand(2, num_seen * num_images) - 300];
  written(fullfile(folder, 'bal.txt'), @fprintf, ['%d %d %d\n', sprintf('%d %d %.6e %.6e\n', observations), ...
                                                  sprintf('%.16e\n', [zeros(3, num_images); t; repmat([700; -0.01; 0], 1, num_images)], -X)], ...
          num_images, num_points, num_seen * num_images);
end

function written(file, write, varargin)
  stream = fopen(file, 'w');
  write(stream, varargin{:});
  fclose(stream);
end
