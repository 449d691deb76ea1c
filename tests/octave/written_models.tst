% SPDX-License-Identifier: BSD-3-Clause
% Models and files with the poses of a batch, written and read again.

%!function leave = folder_for_test(name)  % of that name, until the result is cleared
%!  mkdir(name);
%!  confirm_recursive_rmdir(false, 'local');
%!  leave = onCleanup(@() remove_folder(name));
%!endfunction

%!function remove_folder(name)
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(name, 's');
%!endfunction

%!function [lines, numbers] = without_poses(file)  % of images.txt, with seven numbers apart
%!  lines = strsplit(fileread(file), "\n");
%!  numbers = [];
%!  is_second = false;
%!  for k = 1:numel(lines)
%!    if ~is_second && ~isempty(lines{k}) && lines{k}(1) ~= '#'
%!      words = strsplit(lines{k}, ' ');
%!      numbers(end + 1, :) = str2double(words(2:8));
%!      lines{k} = strjoin(words([1, 9:end]), ' ');
%!      is_second = true;
%!    else
%!      is_second = false;
%!    end
%!  end
%!endfunction

%!function check_round_trip(set)
%!  folder = folder_of_set(set);
%!  if isempty(folder) || ~exist(fullfile(folder, 'model_simple_pinhole'), 'dir')
%!    return;
%!  end
%!  model = fullfile(folder, 'model_simple_pinhole');
%!  copy = tempname();
%!  leave = folder_for_test(copy);
%!  problems = kelvane_read_colmap(model);
%!  results = kelvane_batch(problems, 'Progress', 'off');
%!  kelvane_write_colmap(copy, model, results(2:end));  % the first is as it was
%!  for name = {'cameras.txt', 'points3D.txt'}
%!    assert(fileread(fullfile(copy, name{1})), fileread(fullfile(model, name{1})));
%!  end
%!  [before, old] = without_poses(fullfile(model, 'images.txt'));
%!  [after, new] = without_poses(fullfile(copy, 'images.txt'));
%!  assert(isequal(before, after));
%!  assert(new(1, :), old(1, :));
%!  again = kelvane_read_colmap(copy);
%!  assert(isequal(rmfield(again, 'start'), rmfield(problems, 'start')));
%!  assert(isequal(again(1), problems(1)));
%!  for k = 2:numel(again)
%!    written = kelvane_pose(results(k).info.pose, 'colmap');
%!    assert(new(k, :), [written{:}]);  % to the last bit
%!    assert(again(k).start.rotation, results(k).info.pose.rotation, 4e-16);
%!    assert(again(k).start.centre, results(k).info.pose.centre, 1e-13 * norm(results(k).info.pose.centre) + 1e-14);
%!  end
%!  still = kelvane_batch(again(2), 'Progress', 'off');
%!  assert(still.rms_before, results(2).rms_after, 1e-12);
%!endfunction

%!test  % castle
%! check_round_trip('castle');

%!test  % crane
%! check_round_trip('crane');

%!test  % written where it was read
%! model = tempname();
%! leave = folder_for_test(model);
%! texts = {'cameras', '1 SIMPLE_PINHOLE 640 480 500 320 240'
%!          'images', sprintf('1 1 0 0 0 0 0 2 1 a.jpg\n1 2 7 3 4 8 5 5 9\n2 1 0 0 0 0 0 2 1 b.jpg\n')
%!          'points3D', sprintf('7 1 2 3 0 0 0 0\n8 4 5 6 0 0 0 0\n9 0 1 2 0 0 0 0')};
%! for k = 1:3
%!   write_text(fullfile(model, [texts{k, 1}, '.txt']), sprintf('%s\n', texts{k, 2}));
%! end
%! results = kelvane_batch(kelvane_read_colmap(model), 'Progress', 'off', 'MaxIterations', 1);
%! assert({results.error}, {'', results(2).error});
%! assert(~isempty(results(2).error));
%! kelvane_write_colmap(model, model, results);
%! lines = strsplit(fileread(fullfile(model, 'images.txt')), "\n");
%! assert(lines(2:3), {'1 2 7 3 4 8 5 5 9', '2 1 0 0 0 0 0 2 1 b.jpg'});
%! start = kelvane_read_colmap(model)(1).start;
%! assert(start.centre, results(1).info.pose.centre, 1e-12);
%! message = message_of(@() kelvane_write_colmap(model, model, setfield(results(1), 'name', [char(27), '[2J'])));
%! assert(message, 'The model has no image ''?[2J''.');
%! message = message_of(@() kelvane_write_colmap(model, model, results([1, 1])));
%! assert(message, 'There are two results for image ''a.jpg''.');
%! assert(numel(readdir(model)), 5);  % with . and ..

%!test  % images by name or number, and a camera that stops its own images only
%! model = tempname();
%! leave = folder_for_test(model);
%! write_text(fullfile(model, 'cameras.txt'), sprintf('1 PINHOLE 64 48 50 60 32 24\n2 FISHEYE 64 48 50 60 32 24\n3 LATER 64 48 7\n'));
%! write_text(fullfile(model, 'images.txt'), sprintf('%d 1 0 0 0 0 0 2 %d im%d.jpg\n\n', [1:4; 1 2 3 1; 1:4]));
%! write_text(fullfile(model, 'points3D.txt'), '');
%! [message, identifier] = lastwarn('', '');
%! restoring = onCleanup(@() lastwarn(message, identifier));
%! evalc('problems = kelvane_read_colmap(model);');
%! [message, identifier] = lastwarn();
%! assert(identifier, 'kelvane:cameraModel');
%! assert(message, [model, '/cameras.txt, line 2, column 1: camera 2 has the model FISHEYE, which is none of ', ...
%!                  'SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL, RADIAL, OPENCV, FULL_OPENCV, OPENCV_FISHEYE, SIMPLE_RADIAL_FISHEYE, ', ...
%!                  'RADIAL_FISHEYE, FOV, THIN_PRISM_FISHEYE. Let COLMAP undistort its images first (image_undistorter). ', ...
%!                  '2 of 4 images are left out.']);
%! assert({problems.name}, {'im1.jpg', 'im4.jpg'});
%! assert({kelvane_read_colmap(model, 'Images', 'im4.jpg').name}, {'im4.jpg'});
%! assert([kelvane_read_colmap(model, 'images', {'im4.jpg', 'im1.jpg'}).id], [1, 4]);
%! assert([kelvane_read_colmap(model, 'Images', [4, 1]).id], [1, 4]);
%! assert(numel(kelvane_read_colmap(model, 'Images', 4)), 1);
%! fail('kelvane_read_colmap(model, ''Images'', 3)', 'camera 3 has the model LATER');
%! fail('kelvane_read_colmap(model, ''Images'', {''im5.jpg''})', 'images.txt has no image ''im5.jpg''');
%! fail('kelvane_read_colmap(model, ''Images'', {''''})', 'The name of an image is empty');
%! fail('kelvane_read_colmap(model, ''Images'', 1.5)', '1.5 is no id of an image');
%! fail('kelvane_read_colmap(model, ''Imges'', 1)', 'Did you mean ''Images''');

%!test  % a comment that counts otherwise is a warning
%! model = tempname();
%! leave = folder_for_test(model);
%! write_text(fullfile(model, 'cameras.txt'), sprintf('# Number of cameras: 2\n1 PINHOLE 64 48 50 60 32 24\n'));
%! write_text(fullfile(model, 'images.txt'), '');
%! write_text(fullfile(model, 'points3D.txt'), '');
%! warning('error', 'kelvane:count', 'local');
%! assert(message_of(@() kelvane_read_colmap(model)), ...
%!        [model, '/cameras.txt, line 1, column 22: the comment counts 2; there are 1.']);

%!test  % BAL: the poses that come back are those of the results, the rest is as it was
%! rand('state', 5);
%! name = tempname();
%! removing = onCleanup(@() delete(name));
%! truth = [0.3 -0.2 0.1, 0.5 -0.4 -12; -0.2 0.1 3, 0.1 0.2 -11];
%! points = 4 * rand(3, 30) - 2;
%! seen = [];
%! for k = 1:2
%!   pose = kelvane_pose(truth(k, :), 'rotation_vector', 'camera_from_world', 'matrix3x4', 'camera_from_world');
%!   P = pose(:, 1:3) * points + pose(:, 4);
%!   p = -P(1:2, :) ./ P(3, :);
%!   seen = [seen, [(k - 1) * ones(1, 30); 0:29; 700 * p .* (1 - 0.2 * sum(p.^2) + 0.1 * sum(p.^2).^2)]];
%! end
%! head = [sprintf('2 30 60\n'), sprintf('%d %d %.17g %.17g\n', seen)];
%! tail = sprintf('%.17g\n', points);
%! starts = truth + 0.01;
%! write_text(name, [head, sprintf('%.17g\n', [starts, [700 -0.2 0.1; 700 -0.2 0.1]]'), tail]);
%! results = kelvane_batch(kelvane_read_bal(name), 'Progress', 'off');
%! kelvane_write_bal(name, name, results(2));
%! text = fileread(name);
%! assert(text(1:numel(head)), head);
%! assert(text(end - numel(tail) + 1:end), tail);
%! cameras = reshape(str2double(strsplit(strtrim(text(numel(head) + 1:end - numel(tail))), "\n")), 9, 2);
%! assert(cameras(:, 1), [starts(1, :), 700 -0.2 0.1]');
%! assert(cameras(:, 2), [truth(2, :), 700 -0.2 0.1]', 1e-9);

%!test  % a table where it cannot be written leaves no file
%! fail('kelvane_write_csv(kelvane_batch({}), ''/no/such/folder/table.csv'')', 'there is no such folder');

%!test  % ~ is the user's own folder, also when it is written to
%! home = getenv('HOME');
%! own = tempname();
%! leave = folder_for_test(own);
%! restoring = onCleanup(@() setenv('HOME', home));
%! setenv('HOME', own);
%! kelvane_write_csv(kelvane_batch({}), '~/table.csv');
%! assert(exist(fullfile(own, 'table.csv'), 'file'), 2);
%! fail('kelvane_read_colmap(''~'')', [own, '/cameras.txt cannot be read']);
