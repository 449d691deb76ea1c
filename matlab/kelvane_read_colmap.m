% KELVANE_READ_COLMAP  Read a COLMAP model as one refinement problem for each image.
%
%   problems = kelvane_read_colmap(folder)
%
%   folder holds cameras.txt, images.txt and points3D.txt, which COLMAP writes with "model_converter --output_type TXT".
%   The camera models SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL and RADIAL are read; their distortion is removed from the
%   observations. Any other is an error, as is a broken line; it names the file and the line.
%
%   problems is a 1 x n struct array, in the order of images.txt, as kelvane_batch takes it, with the fields
%     name          file name of the image
%     id            its IMAGE_ID
%     start         its pose, the struct of kelvane_pose (COLMAP's camera_from_world is taken care of)
%     points        3 x m world points, in the model's unit: those that belong to a pixel of this image
%     observations  2 x m pixels without distortion, in COLMAP's count: the centre of the top left one is (0.5, 0.5)
%     intrinsics    3 x 3 K, pixels
%     image_size    [width, height], pixels
%     point_ids     1 x m, POINT3D_ID of each point
%   Pixels beyond what a lens with this distortion can see are left out, with a warning.
%
%   Example:
%     folder = tempname();
%     mkdir(folder);
%     texts = {'cameras', '1 SIMPLE_RADIAL 640 480 500 320 240 0.1'
%              'images', sprintf('7 1 0 0 0 0 0 2 1 first.jpg\n320 240 4 433 240 5')
%              'points3D', sprintf('4 0 0 3 0 0 0 0.1 7 0\n5 1.1 0 3 0 0 0 0.1 7 1')};
%     for k = 1:3
%       file = fopen(fullfile(folder, [texts{k, 1}, '.txt']), 'w');
%       fprintf(file, '%s\n', texts{k, 2});
%       fclose(file);
%     end
%     problem = kelvane_read_colmap(folder);
%     fprintf('%s: (%.2f, %.2f) and (%.2f, %.2f)\n', problem.name, problem.observations);
%   Output:
%     first.jpg: (320.00, 240.00) and (432.43, 240.00)
%
%   See also kelvane_batch, kelvane_read_bal, kelvane_refine, kelvane_pose.

% SPDX-License-Identifier: BSD-3-Clause
% Reader of COLMAP's text models.
function problems = kelvane_read_colmap(folder)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_read_colmap needs the folder of a COLMAP model.');
  end
  folder = checked_text(folder, 'folder');
  if ~exist(fullfile(folder, 'cameras.txt'), 'file') && exist(fullfile(folder, 'cameras.bin'), 'file')
    in_shell = ['''', strrep(folder, '''', '''\'''''), ''''];
    error('kelvane:file', ['%s holds a binary model. Turn it into text: colmap model_converter --input_path %s ' ...
          '--output_path %s --output_type TXT'], folder, in_shell, in_shell);
  end
  cameras = read_colmap_cameras(fullfile(folder, 'cameras.txt'));
  file = fullfile(folder, 'images.txt');
  images = read_colmap_images(file);
  [ids, positions] = read_colmap_points(fullfile(folder, 'points3D.txt'));
  problems = struct('name', {}, 'id', {}, 'start', {}, 'points', {}, 'observations', {}, 'intrinsics', {}, ...
                    'image_size', {}, 'point_ids', {});
  for k = numel(images):-1:1
    problems(k) = problem_of_image(images(k), cameras, ids, positions, file);
  end
end

function problem = problem_of_image(image, cameras, ids, positions, file)
  camera = cameras([cameras.id] == image.camera);
  if isempty(camera)
    file_error(file, image.line, 'image %d has the camera %d, which is not in cameras.txt.', image.id, image.camera);
  end
  used = image.point_ids >= 0 & image.point_ids < 2^53;  % -1, or the largest 64-bit number: no point
  wanted = image.point_ids(used);
  [found, place] = ismember(wanted, ids);
  if ~all(found)
    file_error(file, image.line + 1, 'image %d has the point %d, which is not in points3D.txt.', image.id, ...
               wanted(find(~found, 1)));
  end
  problem = view_problem(image.name, image.id, image.pose, positions(:, place), image.pixels(:, used), camera.K, ...
                         camera.radial, camera.image_size, wanted);
end

%!error <needs the folder> kelvane_read_colmap()
%!error <folder must be a text; this is of class double> kelvane_read_colmap(3)
%!error <cameras.txt cannot be read> kelvane_read_colmap(tempname())

%!test  % the poses are those of the file, one camera for each model, and pixels without a point are left out
%! folder = tempname();
%! mkdir(folder);
%! texts = {'cameras', sprintf('# comment\n\n1 PINHOLE 640 480 500 510 320 240\n5 RADIAL 64 48 50 32 24 0.1 0.02\n')
%!          'images', sprintf('# comment\n3 0.6 0 0.8 0 1 2 3 1 a b.jpg\n1 2 8 9 9 -1 3 4 6\n\n4 1 0 0 0 1 2 3 5 c.jpg\n\n')
%!          'points3D', sprintf('6 1 2 3 0 0 0 -1\r\n8 4 5 6 9 9 9 0.5 3 0 3 2\r\n')};
%! for k = 1:3
%!   file = fopen(fullfile(folder, [texts{k, 1}, '.txt']), 'w');
%!   fprintf(file, '%s', texts{k, 2});
%!   fclose(file);
%! end
%! problems = kelvane_read_colmap(folder);
%! assert({problems.name}, {'a b.jpg', 'c.jpg'});
%! assert([problems.id], [3, 4]);
%! assert(kelvane_pose(problems(1).start, 'colmap'), {[0.6 0 0.8 0], [1 2 3]}, 1e-15);
%! assert({problems(1).points, problems(1).observations, problems(1).point_ids}, {[4 1; 5 2; 6 3], [1 3; 2 4], [8 6]});
%! assert(problems(1).intrinsics, [500 0 320; 0 510 240; 0 0 1]);
%! assert(size(problems(2).points), [3, 0]);
%! assert({problems(2).intrinsics, problems(2).image_size}, {[50 0 32; 0 50 24; 0 0 1], [64 48]});
%! confirm_recursive_rmdir(false, 'local');
%! rmdir(folder, 's');
