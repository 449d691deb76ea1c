% KELVANE_WRITE_COLMAP  Write a COLMAP model with refined poses.
%
%   kelvane_write_colmap(folder, model, results)
%
%   The model in the folder model, from which kelvane_read_colmap has read the problems, is written into folder with the
%   poses of results, in its form: binary or text. All that is no pose is as it was, byte for byte, and so are the poses of
%   images without a result. folder is made where it is not there; it may be model itself, whose poses are then replaced.
%   All files are written beside the old ones first, and put in their place when all are whole: an error or a full disk
%   until then leaves all as they were, and each file is always whole.
%
%   Inputs:
%     folder   text, where to write
%     model    text, the folder that was read
%     results  struct array that kelvane_batch returned; names are those of the images. Results with an error or
%              without a pose are left out.
%              Poses of any exitflag are written: take those that you want, as results([results.exitflag] > 0).
%
%   Where the model has frames (COLMAP 3.12 and later), COLMAP takes the poses from these: they get them as well as the
%   images. Cameras that move as one in a rig cannot each get a pose of its own; their images are refused.
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 4 4.2 4 4.4 5 3.5];
%     >> pixels = kelvane_project(kelvane_pose({[1 0 0 0], [0 0 0]}, 'colmap'), points, [500 320 240]);
%     >> texts = {'cameras', '1 SIMPLE_PINHOLE 640 480 500 320 240'
%     ..          'images', sprintf('7 1 0 0 0 0.1 0 -0.1 1 first.jpg\n%s', sprintf('%.9g %.9g %d ', [pixels; 1:6]))
%     ..          'points3D', sprintf('%d %g %g %g 0 0 0 0\n', [1:6; points])};
%     >> model = tempname();
%     >> mkdir(model);
%     >> for k = 1:3
%     ..   file = fopen(fullfile(model, [texts{k, 1}, '.txt']), 'w');
%     ..   fprintf(file, '%s\n', texts{k, 2});
%     ..   fclose(file);
%     .. end
%     >> results = kelvane_batch(kelvane_read_colmap(model), 'Progress', 'off');
%     >> refined = tempname();
%     >> kelvane_write_colmap(refined, model, results);
%     >> problem = kelvane_read_colmap(refined);
%     >> fprintf('%s: %.6f from the truth\n', problem.name, norm(problem.start.centre))
%     first.jpg: 0.000000 from the truth
%
%
%   See also kelvane_read_colmap, kelvane_batch, kelvane_write_bal, kelvane_write_csv.

% SPDX-License-Identifier: BSD-3-Clause
% Writer of COLMAP's models.
function kelvane_write_colmap(folder, model, results)
  if nargin < 3
    error('kelvane:inputs', 'kelvane_write_colmap needs a folder, the folder of the model that was read, and results.');
  end
  folder = file_name(folder, 'folder');
  model = file_name(model, 'model');
  [poses, names] = poses_of_results(results);
  is_new = ~exist(folder, 'dir');
  ensure_folder(folder);
  try
    call_engine('write_colmap', folder, model, names, poses);
  catch caught
    if is_new
      [~, ~] = rmdir(folder);
    end
    rethrow(caught);
  end
end

%!error <needs a folder, the folder of the model> kelvane_write_colmap('a', 'b')
%!error <folder must be a text; this is of class double> kelvane_write_colmap(3, 'b', struct('name', {}, 'info', {}))
%!error <The name of the folder is empty> kelvane_write_colmap('', 'b', struct('name', {}, 'info', {}))
%!error <results must be the struct array that kelvane_batch returns; this is of class cell> kelvane_write_colmap('a', 'b', {})

%!test  % a model that is not there leaves no folder behind
%! folder = tempname();
%! try
%!   kelvane_write_colmap(folder, tempname(), struct('name', {}, 'info', {}));
%!   error('no error');
%! catch caught
%!   assert(~isempty(strfind(caught.message, 'cameras.txt cannot be read')), caught.message);
%! end
%! assert(~exist(folder, 'dir'));

%!demo
%! % a model of twelve photographs is read, refined and written back
%! kelvane_demo('colmap')
