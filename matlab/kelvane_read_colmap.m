% KELVANE_READ_COLMAP  Read a COLMAP model as one refinement problem for each image.
%
%   problems = kelvane_read_colmap(folder)
%   problems = kelvane_read_colmap(folder, 'Images', images)
%
%   folder holds cameras, images and points3D, as binary files (.bin) or texts (.txt); where it holds both, the binary ones
%   are read, as COLMAP does. rigs and frames, which COLMAP writes from version 3.12 on, are read where they are: then the
%   poses are those of the frames.
%
%   Options, by name in any capitals, or as a struct:
%     'Images'  names (text or cell of texts) or numbers of the images to read; [] (default): all
%
%   Images of a camera model that kelvane_camera does not know are left out, with a warning; where no image is left, that is
%   an error. Anything broken is an error that names the file, line and column, or the byte of a binary file. A comment that
%   counts other than what follows is a warning, and so is a lens that folds back inside its picture: one for all cameras.
%
%   problems is a 1 x n struct array, in the order of the images in the file, as kelvane_batch takes it, with the fields
%     name          file name of the image
%     id            its IMAGE_ID
%     start         its pose, the struct of kelvane_pose (COLMAP's camera_from_world is taken care of)
%     points        3 x m world points, in the model's unit: those that belong to a pixel of this image
%     observations  2 x m pixels as they are in the file, in COLMAP's count: the centre of the top left one is (0.5, 0.5)
%     intrinsics    its camera, the struct of kelvane_camera, with its lens
%     image_size    [width, height], pixels
%     point_ids     1 x m, POINT3D_ID of each point
%   In version 0.1 observations were without distortion and intrinsics 3 x 3: kelvane_undistort(observations, intrinsics)
%   and kelvane_camera(intrinsics, 'opencv') give these.
%
%   Example:
%     >> folder = tempname();
%     >> mkdir(folder);
%     >> texts = {'cameras', '1 SIMPLE_RADIAL 640 480 500 320 240 0.1'
%     ..          'images', sprintf('7 1 0 0 0 0 0 2 1 first.jpg\n320 240 4 433 240 5')
%     ..          'points3D', sprintf('4 0 0 3 0 0 0 0.1 7 0\n5 1.1 0 3 0 0 0 0.1 7 1')};
%     >> for k = 1:3
%     ..   file = fopen(fullfile(folder, [texts{k, 1}, '.txt']), 'w');
%     ..   fprintf(file, '%s\n', texts{k, 2});
%     ..   fclose(file);
%     .. end
%     >> problem = kelvane_read_colmap(folder);
%     >> problem.name
%     ans = first.jpg
%     >> problem.observations
%     ans =
%        320   433
%        240   240
%     >> kelvane_undistort(problem.observations, problem.intrinsics)
%     ans =
%        320.00   432.43
%        240.00   240.00
%
%
%   See also kelvane_write_colmap, kelvane_batch, kelvane_read_bal, kelvane_camera, kelvane_refine, kelvane_pose.

% SPDX-License-Identifier: BSD-3-Clause
% Reader of COLMAP's models.
function problems = kelvane_read_colmap(folder, varargin)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_read_colmap needs the folder of a COLMAP model.');
  end
  options = parse_options('kelvane_read_colmap', struct('Images', []), varargin);
  if ischar(options.Images) && ~isempty(options.Images)
    options.Images = {options.Images};
  end
  views = call_engine('read_colmap', file_name(folder, 'folder'), options.Images);
  problems = view_problems(views, 'colmap');
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
%! assert(problems(1).intrinsics, kelvane_camera('PINHOLE', [500 510 320 240], 'ImageSize', [640 480]));
%! assert(size(problems(2).points), [3, 0]);
%! assert(problems(2).intrinsics, kelvane_camera('RADIAL', [50 32 24 0.1 0.02], 'ImageSize', [64 48]));
%! assert(problems(2).image_size, [64 48]);
%! confirm_recursive_rmdir(false, 'local');
%! rmdir(folder, 's');

%!demo
%! % a model of twelve photographs is read, refined and written back
%! kelvane_demo('colmap')
