% KELVANE_READ_BAL  Read a file of Bundle Adjustment in the Large as one refinement problem for each camera.
%
%   problems = kelvane_read_bal(file)
%
%   file is a text file of that collection, after bunzip2. Its cameras are taken as they are: they look along -z with y up. A
%   broken file is an error that names the line and column. A lens that folds back within its pixels is a warning, one for
%   all cameras.
%
%   problems is a 1 x n struct array, in the order of the file, as kelvane_batch takes it, with the fields
%     name          'camera 0' for the first
%     id            number of the camera in the file, from 0
%     start         its pose, the struct of kelvane_pose; the file has its 'rotation_vector' in 'camera_from_world'
%     points        3 x m world points that it observes, in the file's unit
%     observations  2 x m pixels as they are in the file: u to the right and v up, from the middle of the image
%     intrinsics    its camera, the struct of kelvane_camera with the model 'BAL'
%     image_size    [], which the file does not tell
%     point_ids     1 x m, number of each point in the file, from 0
%   In version 0.1 cameras were turned to look along z with y down, observations were without distortion, and intrinsics
%   3 x 3.
%
%   Example:
%     >> bal = tempname();
%     >> file = fopen(bal, 'w');
%     >> fprintf(file, '1 1 1\n0 0 -30 40\n');              % cameras, points, observations; camera 0 sees point 0 up left
%     >> fprintf(file, '%g\n', [0 0 0, 0 0 0, 100 0 0]);    % rotation vector, translation, focal length, distortion
%     >> fprintf(file, '%g\n', [-3 4 -10]);                 % the point, in front of a camera that looks along -z
%     >> fclose(file);
%     >> problem = kelvane_read_bal(bal);
%     >> problem.observations
%     ans =
%       -30
%        40
%     >> kelvane_project(problem.start, problem.points, problem.intrinsics)
%     ans =
%       -30
%        40
%
%
%   See also kelvane_write_bal, kelvane_batch, kelvane_read_colmap, kelvane_camera, kelvane_refine, kelvane_pose.

% SPDX-License-Identifier: BSD-3-Clause
% Reader of the problems of Agarwal, Snavely, Seitz, Szeliski 2010.
function problems = kelvane_read_bal(file)
  if nargin < 1
    error('kelvane:inputs', 'kelvane_read_bal needs the name of a file.');
  end
  problems = view_problems(call_engine('read_bal', file_name(file, 'file')), 'rotation_vector');
end

%!error <needs the name of a file> kelvane_read_bal()
%!error <file must be a text; this is of class cell> kelvane_read_bal({'problem.txt'})
%!error <The name of the file is empty> kelvane_read_bal('')
%!error <cannot be read> kelvane_read_bal(tempname())

%!test  % pixels that the published formula makes lead to the camera that made them, through its distortion
%! rand('state', 3);
%! camera = [0.3 -0.2 0.1, 0.5 -0.4 0.3, 800, -0.3, 0.1];
%! points = [2 * rand(2, 20) - 1; -3 - 2 * rand(1, 20)];
%! S = [0 -0.1 -0.2; 0.1 0 -0.3; 0.2 0.3 0];
%! P = expm(S) * points + camera(4:6)';
%! p = -P(1:2, :) ./ P(3, :);
%! r2 = sum(p.^2);
%! p = camera(7) * (1 + camera(8) * r2 + camera(9) * r2.^2) .* p;
%! name = tempname();
%! file = fopen(name, 'w');
%! fprintf(file, '2 20 20\n');
%! fprintf(file, '1 %d %.17g %.17g\n', [0:19; p]);
%! fprintf(file, '%.17g\n', camera, camera, points);
%! fclose(file);
%! problems = kelvane_read_bal(name);
%! delete(name);
%! assert([size(problems(1).points, 2), size(problems(2).points, 2)], [0, 20]);
%! assert({problems.name}, {'camera 0', 'camera 1'});
%! assert(problems(2).point_ids, 0:19);
%! assert(problems(2).intrinsics, kelvane_camera('BAL', camera(7:9)));
%! assert(kelvane_pose(problems(2).start, 'rotation_vector', 'camera_from_world'), camera(1:6), 1e-14);
%! assert(problems(2).observations, p);
%! [seen, ~, depth] = kelvane_project(problems(2).start, problems(2).points, problems(2).intrinsics);
%! assert(all(depth > 0));
%! assert(seen, p, 1e-10);

%!demo
%! % a camera that looks along -z and sees one point up left
%! bal = tempname();
%! file = fopen(bal, 'w');
%! fprintf(file, '1 1 1\n0 0 -30 40\n');
%! fprintf(file, '%g\n', [0 0 0, 0 0 0, 100 0 0, -3 4 -10]);
%! fclose(file);
%! problem = kelvane_read_bal(bal)
