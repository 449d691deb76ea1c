% SPDX-License-Identifier: BSD-3-Clause
% The cameras that the readers of models hand on: refined through their lenses, and written back.

%!function leave = folder_for_test(name)  % of that name, until the result is cleared
%!  mkdir(name);
%!  leave = onCleanup(@() remove_folder(name));
%!endfunction

%!function remove_folder(name)
%!  confirm_recursive_rmdir(false, 'local');
%!  rmdir(name, 's');
%!endfunction

%!function row = bytes(values)
%!  row = typecast(values(:)', 'uint8');
%!endfunction

%!function write_binary(name, count, records)
%!  file = fopen(name, 'w');
%!  fwrite(file, [bytes(uint64(count)), records]);
%!  fclose(file);
%!endfunction

%!function write_model(folder, form, models, images, X)  % camera k is models(k, :), name and parameters, of 1200 x 900
%!  numbers = {'SIMPLE_PINHOLE', 'PINHOLE', 'SIMPLE_RADIAL', 'RADIAL', 'OPENCV', 'OPENCV_FISHEYE', 'FULL_OPENCV', 'FOV', ...
%!             'SIMPLE_RADIAL_FISHEYE', 'RADIAL_FISHEYE', 'THIN_PRISM_FISHEYE'};  % from 0
%!  n = size(X, 2);
%!  texts = {'', '', sprintf('%d %.17g %.17g %.17g 0 0 0 0\n', [1:n; X])};
%!  points = [reshape(bytes(uint64(1:n)), 8, n); reshape(bytes(X), 24, n); zeros(3 + 8 + 8, n, 'uint8')];
%!  records = {[], [], points(:)'};
%!  for k = 1:size(models, 1)
%!    [model, parameters] = models{k, :};
%!    texts{1} = [texts{1}, sprintf('%d %s 1200 900%s\n', k, model, sprintf(' %.17g', parameters))];
%!    records{1} = [records{1}, bytes(uint32(k)), bytes(int32(find(strcmp(model, numbers)) - 1)), bytes(uint64([1200 900])), ...
%!                  bytes(parameters)];
%!  end
%!  for k = 1:numel(images)
%!    image = images(k);
%!    pose = [kelvane_pose(image.pose, 'colmap'){:}];
%!    texts{2} = [texts{2}, sprintf('%d%s %d %s\n', k, sprintf(' %.17g', pose), image.camera, image.name), ...
%!                sprintf('%.17g %.17g %d ', [image.pixels; image.ids]), "\n"];
%!    rows = [reshape(bytes(image.pixels), 16, []); reshape(bytes(int64(image.ids)), 8, [])];
%!    records{2} = [records{2}, bytes(uint32(k)), bytes(pose), bytes(uint32(image.camera)), uint8(image.name), uint8(0), ...
%!                  bytes(uint64(numel(image.ids))), rows(:)'];
%!  end
%!  counts = [size(models, 1), numel(images), n];
%!  names = {'cameras', 'images', 'points3D'};
%!  for i = 1:3
%!    if strcmp(form, 'txt')
%!      write_text(fullfile(folder, [names{i}, '.txt']), texts{i});
%!    else
%!      write_binary(fullfile(folder, [names{i}, '.bin']), counts(i), records{i});
%!    end
%!  end
%!endfunction

%!function models = all_models()  % COLMAP's, with strong lenses
%!  K = [900 920 600 450];
%!  models = {'SIMPLE_PINHOLE', K([1 3 4]); 'PINHOLE', K; 'SIMPLE_RADIAL', [K([1 3 4]), -0.15]; ...
%!            'RADIAL', [K([1 3 4]), -0.2 0.05]; 'OPENCV', [K, -0.2 0.05 2e-3 -1e-3]; ...
%!            'FULL_OPENCV', [K, 0.3 0.1 1e-3 2e-3 0.01 0.4 0.1 0.01]; 'OPENCV_FISHEYE', [500 510 600 450 -0.02 0.01 0 1e-3]; ...
%!            'SIMPLE_RADIAL_FISHEYE', [500 600 450 -0.02]; 'RADIAL_FISHEYE', [500 600 450 -0.02 0.01]; ...
%!            'FOV', [500 510 600 450 0.9]; 'THIN_PRISM_FISHEYE', [500 510 600 450 -0.02 0.01 1e-3 2e-3 1e-3 0 1e-3 2e-3]};
%!endfunction

%!function [images, X] = seen_through(models)  % an image for each, with exact pixels all over it; pose is a bad one
%!  rand('state', 18);
%!  images = struct([]);
%!  X = zeros(3, 0);
%!  for k = 1:size(models, 1)
%!    camera = kelvane_camera(models{k, :}, 'ImageSize', [1200 900]);
%!    truth = kelvane_pose([rand(1, 3) - 0.5, 2 * rand(1, 3)], 'rotation_vector', 'world_from_camera');
%!    rays = kelvane_undistort([1200; 900] .* rand(2, 25), camera, 'directions');
%!    own = truth.rotation * (rays .* (4 + 3 * rand(1, 25))) + truth.centre;
%!    pose = truth;
%!    pose.rotation = truth.rotation * expm([0 -0.02 0.03; 0.02 0 -0.01; -0.03 0.01 0]);
%!    pose.centre = truth.centre + 0.1;
%!    images(k).name = sprintf('%s.jpg', models{k, 1});
%!    images(k).camera = k;
%!    images(k).camera_struct = camera;
%!    images(k).pixels = kelvane_project(truth, own, camera);
%!    images(k).ids = size(X, 2) + (1:25);
%!    images(k).truth = truth;
%!    images(k).pose = pose;
%!    X = [X, own];
%!  end
%!endfunction

%!function assert_poses(poses, truths)
%!  for k = 1:numel(truths)
%!    assert({poses(k).rotation, poses(k).centre}, {truths(k).rotation, truths(k).centre}, 1e-9);
%!  end
%!endfunction

%!test  % every model of COLMAP, text and binary: pixels and cameras of the file; refined, the poses are those that made the
%! % pixels, whoever refines; written and read again only the poses are others
%! models = all_models();
%! [images, X] = seen_through(models);
%! for form = {'txt', 'bin'}
%!   model = tempname();
%!   leave = folder_for_test(model);
%!   write_model(model, form{1}, models, images, X);
%!   assert(evalc('problems = kelvane_read_colmap(model);'), '');
%!   assert({problems.name}, {images.name});
%!   for k = 1:numel(problems)
%!     assert(isequal(problems(k).intrinsics, images(k).camera_struct), models{k, 1});
%!     assert(isequal(problems(k).observations, images(k).pixels), models{k, 1});
%!     assert(problems(k).image_size, [1200 900]);
%!   end
%!   results = kelvane_batch(problems, 'Progress', 'off');
%!   assert({results.error}, repmat({''}, 1, numel(problems)));
%!   assert_poses([results.pose], [images.truth]);
%!   [~, info] = kelvane_refine(problems(5).start, problems(5).points, problems(5).observations, problems(5).intrinsics);
%!   assert(isequal(results(5).info, info));
%!   assert(isequal(info.intrinsics, problems(5).intrinsics));
%!   assert(results(2).info.intrinsics, [900 0 600; 0 920 450; 0 0 1]);
%!   if has_parallel()
%!     assert(isequaln(kelvane_batch(problems, 'Progress', 'off', 'Processes', 2), results));
%!   end
%!   copy = [model, '_copy'];
%!   leave_too = folder_for_test(copy);
%!   kelvane_write_colmap(copy, model, results);
%!   again = kelvane_read_colmap(copy);
%!   assert(isequal(rmfield(again, 'start'), rmfield(problems, 'start')));
%!   assert_poses([again.start], [images.truth]);
%!   for name = {'cameras', 'points3D'}
%!     assert(fileread(fullfile(copy, [name{1}, '.', form{1}])), fileread(fullfile(model, [name{1}, '.', form{1}])));
%!   end
%!   clear leave leave_too
%! end

%!test  % lenses that fold inside their pictures are one warning, for any number of images, and nothing is left out
%! model = tempname();
%! leave = folder_for_test(model);
%! [message, identifier] = lastwarn('', '');
%! restoring = onCleanup(@() lastwarn(message, identifier));
%! images = sprintf('%d 1 0 0 0 0 0 2 1 im%d.jpg\n1 2 7 3 4 8\n', repmat(1:1000, 2, 1));
%! write_text(fullfile(model, 'images.txt'), images);
%! write_text(fullfile(model, 'points3D.txt'), sprintf('7 1 2 3 0 0 0 0\n8 4 5 6 0 0 0 0\n'));
%! folding = '1 SIMPLE_RADIAL 640 480 300 320 240 -0.33333333333333333';
%! write_text(fullfile(model, 'cameras.txt'), sprintf('# one\n%s\n', folding));
%! text = evalc('problems = kelvane_read_colmap(model);');
%! assert(numel(strfind(text, 'warning: ')) - numel(strfind(text, 'warning: called')), 1);
%! [told, kind] = lastwarn();
%! assert(kind, 'kelvane:fold');
%! sentence = [model, '/cameras.txt, line 2, column 1: the lens of camera 1 folds inside its picture: from about 200 pixels ', ...
%!             'around the principal point on, at 45 degrees to the axis, nothing has an image.'];
%! assert(told, sentence);
%! assert(isequal({problems([1, 1000]).observations}, {[1 3; 2 4], [1 3; 2 4]}));
%! % of three cameras two fold; a third that no image has is not looked at, and without a height there is no picture
%! cameras = {folding, strrep(folding, '1 S', '2 S'), strrep(folding, '1 S', '3 S'), '4 SIMPLE_RADIAL 640 0 300 320 240 -0.4'};
%! write_text(fullfile(model, 'cameras.txt'), ['# four', sprintf('\n%s', cameras{:}), "\n"]);
%! write_text(fullfile(model, 'images.txt'), sprintf('%d 1 0 0 0 0 0 2 %d im%d.jpg\n\n', [1:4; 1 2 4 2; 1:4]));
%! evalc('problems = kelvane_read_colmap(model);');
%! assert(lastwarn(), [sentence, ' 2 of 3 cameras do.']);
%! assert(isempty(problems(3).image_size) && isempty(problems(3).intrinsics.image_size));

%!test  % of BAL's, where a pixel lies beyond
%! file = tempname();
%! removing = onCleanup(@() delete(file));
%! [message, identifier] = lastwarn('', '');
%! restoring = onCleanup(@() lastwarn(message, identifier));
%! numbers = sprintf('%d\n', 0, 0, 0, 0, 0, -5, 600, -1, 0, 0, 0, 0, 0, 0, -5, 600, -1, 0, 1, 2, 3);
%! write_text(file, sprintf('2 1 3\n0 0 100 20\n1 0 -1 -2\n1 0 200 -100\n%s', numbers));
%! evalc('problems = kelvane_read_bal(file);');
%! assert(lastwarn(), '');  % the image ends at 600 * 2 / sqrt(27) = 230.9 pixels, these at 223.6
%! write_text(file, sprintf('2 1 3\n0 0 100 20\n1 0 -1 -2\n1 0 200 -100\n%s', strrep(numbers, '600', '500')));
%! evalc('problems = kelvane_read_bal(file);');
%! [told, kind] = lastwarn();
%! assert(kind, 'kelvane:fold');
%! assert(told, [file, ', line 14, column 1: the lens of camera 1 folds inside its picture: from about 192.5 pixels ', ...
%!               'around the principal point on, at 30 degrees to the axis, nothing has an image.']);
%! assert(problems(2).observations, [-1 200; -2 -100]);

%!test  % castle with its own distortion put back into the pixels of the undistorted model, of three decimals: the cost counts
%! % in other pixels then, so the optimum is another one by a part of its uncertainty
%! folder = folder_of_set('castle');
%! if ~isempty(folder)
%!   problems = kelvane_read_colmap(fullfile(folder, 'model_simple_pinhole'));
%!   model = tempname();
%!   leave = folder_for_test(model);
%!   lens = {'SIMPLE_RADIAL', [problems(1).intrinsics.parameters, -0.164224]};
%!   points = [problems.points];
%!   ends = cumsum(arrayfun(@(problem) size(problem.points, 2), problems));
%!   for k = 1:numel(problems)
%!     images(k) = struct('name', problems(k).name, 'camera', 1, 'pose', problems(k).start, 'ids', ...
%!                        ends(k) - size(problems(k).points, 2) + 1:ends(k), 'pixels', ...
%!                        kelvane_distort(problems(k).observations, kelvane_camera(lens{:})));
%!   end
%!   write_model(model, 'bin', lens, images, points);
%!   results = kelvane_batch(kelvane_read_colmap(model), 'Progress', 'off');
%!   known = shared_problems('castle', 'pixel');
%!   assert(numel(results), 11);
%!   for k = 1:11
%!     own = known(strcmp({known.name}, sprintf('castle %d', problems(k).id)));
%!     [turn, shift] = distance_from(own, results(k).pose);
%!     assert(turn < 1e-4 && shift < 1e-4, own.name);
%!     assert(results(k).info.intrinsics.model, 'SIMPLE_RADIAL');
%!   end
%! end

%!function name = bal_file_of(problems)  % in BAL's own camera frame, which looks along -z, with y up
%!  name = tempname();
%!  sizes = arrayfun(@(problem) size(problem.points, 2), problems);
%!  head = sprintf('%d %d %d\n', numel(problems), sum(sizes), sum(sizes));
%!  rows = '';
%!  cameras = '';
%!  number = 0;
%!  for k = 1:numel(problems)
%!    seen = problems(k).observations .* [1; -1];
%!    rows = [rows, sprintf('%d %d %.17g %.17g\n', [(k - 1) * ones(1, sizes(k)); number:number + sizes(k) - 1; seen])];
%!    number = number + sizes(k);
%!    pose = kelvane_pose(problems(k).start, 'rotation_vector', 'world_from_camera');
%!    pose.rotation(:, 2:3) = -pose.rotation(:, 2:3);
%!    cameras = [cameras, sprintf('%.17g\n', kelvane_pose(pose, 'rotation_vector', 'camera_from_world'), ...
%!                                problems(k).intrinsics(1), 0, 0)];
%!  end
%!  write_text(name, [head, rows, cameras, sprintf('%.17g\n', [problems.points])]);
%!endfunction

%!test  % BAL's own file, from a far start: the optima that are known
%! for set = {'bal', 'bal_adjusted'}
%!   known = shared_problems(set{1}, 'pixel');
%!   if ~isempty(known)
%!     file = bal_file_of(known);
%!     removing = onCleanup(@() delete(file));
%!     results = kelvane_batch(kelvane_read_bal(file), 'Progress', 'off');
%!     assert(numel(results), numel(known));
%!     for k = 1:numel(known)
%!       pose = results(k).pose;
%!       pose.rotation(:, 2:3) = -pose.rotation(:, 2:3);
%!       [turn, shift] = distance_from(known(k), pose);
%!       assert(turn < 1e-8 && shift < 1e-8, known(k).name);
%!       assert(results(k).info.num_behind, 0);
%!     end
%!     clear removing
%!   end
%! end
