% SPDX-License-Identifier: BSD-3-Clause
% COMPARE_READING  Time the readers of COLMAP models and BAL files, and print a Markdown table.
%
%   compare_reading(ours, others, share)
%
%   ours    cell of the folders, module first, that hold this version
%   others  the same of another one; {''} for none
%   share   of the observations that the published table has, 1 or less
%
%   Example:  compare_reading({'build/benchmark', 'matlab'}, {''}, 0.1)
%
%   See also compare_daily_use.
function compare_reading(ours, others, share)
  confirm_recursive_rmdir(false, 'local');
  folder = tempname();
  mkdir(folder);
  removing = onCleanup(@() rmdir(folder, 's'));
  n = @(count) 200 * ceil(share * count / 200);
  model = write_model(fullfile(folder, 'model'), 200, n(100000), n(500000) / 200, n(450000) / 200);
  bal = write_bal_file(fullfile(folder, 'bal'), 120, n(60000), ceil(1704 * share));
  fprintf('## Reading files in Octave\n\nSeconds, the best of three calls; memory is what the process grows by, in sizes of the file:\n\n');
  fprintf('| what | MB | older version | this version | older / this | goal | memory | goal |\n');
  fprintf('| --- | --: | --: | --: | --: | --: | --: | --: |\n');
  colmap = @(model, form) ['kelvane_read_colmap(''', fullfile(model, form), ''')'];
  text = row('COLMAP text, 200 images', fullfile(model, 'text'), colmap(model, 'text'), ours, others, 15);
  binary = row('the same, binary', fullfile(model, 'binary'), colmap(model, 'binary'), ours, {''}, NaN);
  row('BAL, 120 cameras', bal, ['kelvane_read_bal(''', bal, ''')'], ours, others, 5);
  fprintf('\nThe binary model takes %.2f of the text''s time (goal 0.33). ', binary / text);
  few = write_model(fullfile(folder, 'few'), n(1000), n(25000), 50, 0);
  many = write_model(fullfile(folder, 'many'), n(8000), n(200000), 50, 0);
  times = [measured(ours, colmap(few, 'text')), measured(ours, colmap(many, 'text'))];
  fprintf('%d images take %.3g times as long as %d, as text.\n\n', n(8000), times(2) / times(1), n(1000));
end

function seconds = row(name, place, call, ours, others, goal)
  megabytes = size_of(place) / 2^20;
  older = NaN;
  if ~isempty(others{1})
    older = measured(others, call);
  end
  [seconds, growth] = measured(ours, call);
  values = {older, seconds, older / seconds, goal};
  texts = cellfun(@(value) sprintf('%.3g', value), values, 'UniformOutput', false);
  texts(cellfun(@isnan, values)) = {'-'};
  fprintf('| %s | %.0f | %s | %s | %s | %s | %.1f | 4 |\n', name, megabytes, texts{:}, growth / 2^20 / megabytes);
end

function bytes = size_of(place)
  files = dir(place);
  bytes = sum([files(~[files.isdir]).bytes]);
end

% The best of three calls, and what the first took beyond the memory that the process had, each in a process of its own.
function [seconds, growth] = measured(version, call)
  script = [tempname(), '.m'];
  removing = onCleanup(@() delete(script));
  stream = fopen(script, 'w');
  fprintf(stream, 'warning(''off'', ''Octave:shadowed-function'');\n');
  fprintf(stream, 'addpath(''%s'');\n', strjoin(version, pathsep()));
  fprintf(stream, 'read = @(name) 1024 * str2double(regexp(fileread(''/proc/self/status''), ');
  fprintf(stream, '[name, '':\\s*(\\d+) kB''], ''tokens'', ''once''){1});\n');
  fprintf(stream, 'kelvane_pose(eye(3, 4), ''matrix3x4'', ''camera_from_world'');\nbefore = read(''VmRSS'');\nseconds = [];\n');
  fprintf(stream, 'for k = 1:3\n  timer = tic(); p = %s; seconds(k) = toc(timer);\n', call);
  fprintf(stream, '  growth(k) = read(''VmHWM'') - before; clear p\nend\nprintf(''%%g %%g'', min(seconds), growth(1));\n');
  fclose(stream);
  [~, told] = system(['octave-cli --norc --no-history -q ', script, ' 2>/dev/null']);
  values = sscanf(told, '%f');
  seconds = values(1);
  growth = values(2);
end

% As text and binary. Each image sees a number of points, and has pixels without one.
function folder = write_model(folder, num_images, num_points, num_seen, num_idle)
  mkdir(folder);
  mkdir(folder, 'text');
  mkdir(folder, 'binary');
  X = [4 * rand(2, num_points) - 2; 6 + 2 * rand(1, num_points)];
  files = [fopen(fullfile(folder, 'text', 'cameras.txt'), 'w'), fopen(fullfile(folder, 'binary', 'cameras.bin'), 'w')];
  fprintf(files(1), '1 SIMPLE_RADIAL 4000 3000 3200.5 2000 1500 -0.01\n');
  fwrite(files(2), [bytes(uint64(1)), bytes(uint32(1)), bytes(int32(2)), bytes(uint64([4000, 3000])), ...
                    bytes([3200.5, 2000, 1500, -0.01])]);
  arrayfun(@fclose, files);
  files = [fopen(fullfile(folder, 'text', 'images.txt'), 'w'), fopen(fullfile(folder, 'binary', 'images.bin'), 'w')];
  fwrite(files(2), bytes(uint64(num_images)));
  seen = zeros(num_seen, num_images);
  for k = 1:num_images
    seen(:, k) = mod((k - 1) * 37 + (0:num_seen - 1) * 7919, num_points) + 1;
    t = rand(1, 3) - 0.5;
    x = (X(1:2, seen(:, k)) + t(1:2)') ./ (X(3, seen(:, k)) + t(3));
    pixels = [3200.5 * x .* (1 - 0.01 * sum(x.^2)) + [2000; 1500], 3000 * rand(2, num_idle)];
    ids = [seen(:, k)', -ones(1, num_idle)];
    fprintf(files(1), '%d 1 0 0 0 %.17g %.17g %.17g 1 image_%05d.jpg\n', k, t, k);
    fprintf(files(1), '%s\n', strtrim(sprintf('%.17g %.17g %d ', [pixels; ids])));
    rows = [reshape(bytes(pixels), 16, []); reshape(bytes(int64(ids)), 8, [])];
    fwrite(files(2), [bytes(uint32(k)), bytes([1 0 0 0, t]), bytes(uint32(1)), uint8(sprintf('image_%05d.jpg', k)), uint8(0), ...
                      bytes(uint64(numel(ids))), rows(:)']);
  end
  arrayfun(@fclose, files);
  write_points(folder, X, seen);
end

function write_points(folder, X, seen)
  [ids, order] = sort(seen(:));
  [pixel, image] = ind2sub(size(seen), order);
  counts = accumarray(ids, 1, [columns(X), 1]);
  last = cumsum(counts);
  files = [fopen(fullfile(folder, 'text', 'points3D.txt'), 'w'), fopen(fullfile(folder, 'binary', 'points3D.bin'), 'w')];
  fwrite(files(2), bytes(uint64(columns(X))));
  for j = 1:columns(X)
    own = last(j) - counts(j) + 1:last(j);
    track = [image(own), pixel(own) - 1]';
    fprintf(files(1), '%d %.17g %.17g %.17g 10 20 30 %.17g%s\n', j, X(:, j), X(1, j)^2, sprintf(' %d', track));
    fwrite(files(2), [bytes(uint64(j)), bytes(X(:, j)'), uint8([10, 20, 30]), bytes(X(1, j)^2), bytes(uint64(counts(j))), ...
                      bytes(uint32(track(:)'))]);
  end
  arrayfun(@fclose, files);
end

function row = bytes(values)
  row = typecast(values(:)', 'uint8');
end

function file = write_bal_file(file, num_cameras, num_points, num_seen)
  stream = fopen(file, 'w');
  fprintf(stream, '%d %d %d\n', num_cameras, num_points, num_cameras * num_seen);
  X = [4 * rand(2, num_points) - 2; -6 - 2 * rand(1, num_points)];
  poses = 0.1 * rand(6, num_cameras) - 0.05;
  poses(1:3, :) = 0;
  for k = 1:num_cameras
    ids = mod((k - 1) * 37 + (0:num_seen - 1) * 7919, num_points);
    P = X(:, ids + 1) + poses(4:6, k);
    x = -P(1:2, :) ./ P(3, :);
    fprintf(stream, '%d %d %.6e %.6e\n', [(k - 1) * ones(1, num_seen); ids; 700 * x .* (1 - 0.01 * sum(x.^2))]);
  end
  fprintf(stream, '%.16e\n', [poses; repmat([700; -0.01; 0], 1, num_cameras)], X);
  fclose(stream);
end
