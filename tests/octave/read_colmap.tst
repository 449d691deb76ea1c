% SPDX-License-Identifier: BSD-3-Clause
% kelvane_read_colmap on broken files and on the models of the whole sets of measurements.

%!function texts = good_texts()
%!  texts.cameras = sprintf('# list\n1 SIMPLE_PINHOLE 640 480 500 320 240\n');
%!  texts.images = sprintf('# list\n1 1 0 0 0 0 0 2 1 a.jpg\n1 2 7 3 4 8\n');
%!  texts.points3D = sprintf('# list\n7 1 2 3 0 0 0 0.5 1 0\n8 4 5 6 0 0 0 0.5 1 1\n');
%!endfunction

%!function message = message_with(file, text)  % of a model in which one file is replaced, without the folder
%!  folder = tempname();
%!  mkdir(folder);
%!  confirm_recursive_rmdir(false, 'local');
%!  removing = onCleanup(@() rmdir(folder, 's'));
%!  texts = good_texts();
%!  texts.(file) = text;
%!  for name = fieldnames(texts)'
%!    write_text(fullfile(folder, [name{1}, '.txt']), texts.(name{1}));
%!  end
%!  message = strrep(message_of(@() kelvane_read_colmap(folder)), [folder, filesep()], '');
%!endfunction

%!test  % broken lines are told with their file and number; blank lines and comments count as lines
%! cases = {
%!   'cameras', sprintf('\n1 FISHEYE 640 480 500 500 320 240\n'), 'cameras.txt, line 2, column 1: camera 1 has the model FISHEYE, which is none of SIMPLE_PINHOLE, PINHOLE'
%!   'cameras', sprintf('\n1 BAL 640 480 500 0 0\n'), 'cameras.txt, line 2, column 1: camera 1 has the model BAL, which is none of'
%!   'cameras', '1 FOV 640 480 500 500 320 240 3.2', 'cameras.txt, line 1, column 1: camera 1: omega of FOV is 3.2; it must be from 0 to below pi.'
%!   'cameras', '1 OPENCV 640 480 500 500 320 240 0', 'cameras.txt, line 1, column 35: a camera of model OPENCV has width, height and 8 parameters; here are 7 numbers.'
%!   'cameras', '1', 'cameras.txt, line 1, column 2: camera 1 has no model.'
%!   'cameras', 'one PINHOLE 1 1', 'cameras.txt, line 1, column 1: ''one'' is not a number.'
%!   'cameras', '1 PINHOLE 640 480 500 320 240', 'cameras.txt, line 1, column 30: a camera of model PINHOLE has width, height and 4 parameters; here are 5 numbers.'
%!   'cameras', '1 SIMPLE_PINHOLE 640 480 5x0 320 240', 'cameras.txt, line 1, column 26: ''5x0'' is not a number.'
%!   'cameras', '1 SIMPLE_PINHOLE 640 480 NaN 320 240', 'cameras.txt, line 1, column 26: ''NaN'' is not a finite number.'
%!   'cameras', '1 SIMPLE_PINHOLE 640 480 -500 320 240', 'cameras.txt, line 1, column 26: the focal length is -500; it must be above 0.'
%!   'cameras', sprintf('1 SIMPLE_PINHOLE 6 4 5 3 2\n# again\n1 SIMPLE_PINHOLE 6 4 5 3 2\n'), 'cameras.txt, line 3, column 1: there are two cameras 1.'
%!   'cameras', '2 SIMPLE_PINHOLE 640 480 500 320 240', 'images.txt, line 2, column 17: image 1 has the camera 1, which is not in cameras.txt.'
%!   'images', sprintf('\n\n1 1 0 0 0 0 0 2 1 a.jpg\n'), 'images.txt, line 3, column 1: the line with the pixels of this image is missing.'
%!   'images', sprintf('1 1 0 0 0 0 0\n1 2 7\n'), 'images.txt, line 1, column 14: it ends after 7 of 9 numbers.'
%!   'images', sprintf('1 1 0 0 0 0 zero 2 1 a.jpg\n1 2 7\n'), 'images.txt, line 1, column 13: ''zero'' is not a number.'
%!   'images', sprintf('1 0 0 0 0 0 0 2 1 a.jpg\n1 2 7\n'), 'images.txt, line 1, column 3: the quaternion of image 1 has the length 0.'
%!   'images', sprintf('1 1 0 0 0 0 0 2 1 a.jpg\n1 2 7 3\n'), 'images.txt, line 2, column 8: the pixels of image 1 come as X, Y and POINT3D_ID; here are 4 numbers.'
%!   'images', sprintf('1 1 0 0 0 0 0 2 1 a.jpg\n1 2 7 3 4 9\n'), 'images.txt, line 2, column 11: image 1 has the point 9, which is not in points3D.txt.'
%!   'images', sprintf('1 1 0 0 0 0 0 2 1 a\n\n1 1 0 0 0 0 0 2 1 b\n\n'), 'images.txt, line 3, column 1: there are two images 1.'
%!   'points3D', sprintf('7 1 2 3 0 0 0 0.5 1 0\n\n8 4 5 6 0 0 0\n'), 'points3D.txt, line 3, column 14: a point has its id, X, Y, Z, R, G, B, an error and pairs of IMAGE_ID and POINT2D_IDX; here are 7 numbers.'
%!   'points3D', sprintf('7 1 2 3 0 0 0 0.5 1\n'), 'points3D.txt, line 1, column 20: a point has its id, X, Y, Z, R, G, B, an error and pairs of IMAGE_ID and POINT2D_IDX; here are 9 numbers.'
%!   'points3D', sprintf('7 1 2 3 0 0 0 0.5 1 0\n8 4 5 six 0 0 0 0.5 1 1\n'), 'points3D.txt, line 2, column 7: ''six'' is not a number.'
%!   'points3D', sprintf('7 1 2 3 0 0 0 0\n\n8 4 5 6 0 0 0 0\n7 1 2 3 0 0 0 0\n'), 'points3D.txt, line 4, column 1: there are two points 7.'};
%! for k = 1:size(cases, 1)
%!   message = message_with(cases{k, 1:2});
%!   assert(strncmp(message, cases{k, 3}, numel(cases{k, 3})), [message, ' instead of ', cases{k, 3}]);
%! end
%! assert(message_with('cameras', good_texts().cameras), '');

%!function problems = shared_model(set)
%!  problems = struct([]);
%!  folder = folder_of_set(set);
%!  if ~isempty(folder)
%!    problems = kelvane_read_colmap(fullfile(folder, 'model_simple_pinhole'));
%!  end
%!endfunction

%!test  % castle: refined, every image is at the optimum of its full digits, as near as three decimals of a pixel allow
%! problems = shared_model('castle');
%! known = shared_problems('castle', 'pixel');
%! assert(numel(problems), numel(known));
%! results = kelvane_batch(problems, 'Progress', 'off');
%! for k = 1:numel(problems)
%!   own = known(strcmp({known.name}, sprintf('castle %d', problems(k).id)));
%!   assert(size(problems(k).points), size(own.points));
%!   [turn, shift] = distance_from(own, results(k).pose);
%!   assert(turn < 1e-6 && shift < 1e-6);
%!   assert(results(k).exitflag > 0 && results(k).rms_after < results(k).rms_before);
%! end

%!test  % crane: 8 images, whose poses are already good
%! problems = shared_model('crane');
%! results = kelvane_batch(problems, 'Progress', 'off');
%! assert(all([results.exitflag] > 0));
%! assert(all([results.rms_after] > 0.5 & [results.rms_after] < 2));
%! assert(isempty(problems) || numel(problems) == 8);
