% KELVANE_WRITE_BAL  Write a file of Bundle Adjustment in the Large with refined poses.
%
%   kelvane_write_bal(file, source, results)
%
%   The file source, from which kelvane_read_bal has read the problems, is written to file with the poses of results. All
%   else is as it was, byte for byte, and so are the poses of cameras without a result. Either the whole file is written
%   or, after an error, a full disk or an interruption, it is as it was.
%
%   Inputs:
%     file     text, where to write; it may be source itself
%     source   text, the file that was read
%     results  struct array that kelvane_batch returned; names are those of the cameras, 'camera 0' for the first. Results
%              with an error or without a pose are left out.
%
%   Example:
%     >> bal = tempname();
%     >> file = fopen(bal, 'w');
%     >> fprintf(file, '1 4 4\n');                                          % cameras, points, observations
%     >> fprintf(file, '0 %d %g %g\n', [0:3; 0 100 0 100; 0 0 100 50]);     % camera 0 sees each point
%     >> fprintf(file, '%g\n', [0 0 0.01, 0.1 0 0, 1000 0 0]);              % a pose that is not quite right
%     >> fprintf(file, '%g %g %g\n', [0 1 0 1.1; 0 0 1 0.55; -10 -10 -10 -11]);
%     >> fclose(file);
%     >> results = kelvane_batch(kelvane_read_bal(bal), 'Progress', 'off');
%     >> refined = tempname();
%     >> kelvane_write_bal(refined, bal, results);
%     >> problem = kelvane_read_bal(refined);
%     >> fprintf('%.6f from the truth\n', norm(problem.start.centre))
%     0.000000 from the truth
%
%
%   See also kelvane_read_bal, kelvane_batch, kelvane_write_colmap, kelvane_write_csv.

% SPDX-License-Identifier: BSD-3-Clause
% Writer of the problems of Agarwal, Snavely, Seitz, Szeliski 2010.
function kelvane_write_bal(file, source, results)
  if nargin < 3
    error('kelvane:inputs', 'kelvane_write_bal needs a file, the file that was read, and results.');
  end
  file = file_name(file, 'file');
  source = file_name(source, 'source');
  [poses, names] = poses_of_results(results);
  numbers = cellfun(@number_of_camera, names);
  odd = find(isnan(numbers), 1);
  if ~isempty(odd)
    error('kelvane:results', 'results(%d) is not of a camera that kelvane_read_bal has read: those are ''camera 0'' and so on.', odd);
  end
  call_engine('write_bal', file, source, numbers, poses);
end

% NaN where it is none. A name may be of any bytes.
function number = number_of_camera(name)
  number = NaN;
  begin = 'camera ';
  digits = name(numel(begin) + 1:end);
  if strncmp(name, begin, numel(begin)) && any(numel(digits) == 1:9) && all(digits >= '0' & digits <= '9')
    number = str2double(digits);
  end
end

%!error <needs a file, the file that was read> kelvane_write_bal('a', 'b')
%!error <source must be a text; this is of class double> kelvane_write_bal('a', 3, struct('name', {}, 'info', {}))
%!error <results must be the struct array> kelvane_write_bal('a', 'b', 7)
%!error <a result has no pose with rotation and centre: number 1> kelvane_write_bal('a', 'b', struct('name', 'camera 0', 'info', 5))
%!test  % without a good result the poses stay
%! source = tempname();
%! file = fopen(source, 'w');
%! fprintf(file, '1 1 1\n0 0 1 2\n0 0 0 0 0 0 500 0 0\n1 2 -3\n');
%! fclose(file);
%! target = tempname();
%! kelvane_write_bal(target, source, kelvane_batch(kelvane_read_bal(source), 'Progress', 'off'));
%! assert(fileread(target), fileread(source));
%! delete(source);
%! delete(target);

%!error <results\(1\) is not of a camera> kelvane_write_bal('a', 'b', struct('name', ['camera 1', 228], 'info', struct('pose', kelvane_pose(eye(4)(1:3, :), 'matrix3x4', 'camera_from_world'))))
%!error <results\(1\) is not of a camera> kelvane_write_bal('a', 'b', struct('name', 'a.jpg', 'info', struct('pose', kelvane_pose(eye(4)(1:3, :), 'matrix3x4', 'camera_from_world'))))

%!test  % an estimate that found no pose leaves that of the file
%! source = tempname();
%! target = tempname();
%! removing = onCleanup(@() cellfun(@delete, {source, target}));
%! file = fopen(source, 'w');
%! fprintf(file, '1 3 3\n0 0 0 0\n0 1 10 0\n0 2 0 10\n0\n0\n0\n0\n0\n0\n100\n0\n0\n');
%! fprintf(file, '%g\n', [0 0 -10, 1 0 -10, 0 1 -10]);
%! fclose(file);
%! problems = rmfield(kelvane_read_bal(source), 'start');
%! results = kelvane_batch(problems, 'Progress', 'off');
%! assert(results.exitflag, -4);
%! kelvane_write_bal(target, source, results);
%! assert(fileread(target), fileread(source));

%!demo
%! % a camera that is not quite right, refined and written
%! bal = tempname();
%! file = fopen(bal, 'w');
%! fprintf(file, '1 4 4\n');
%! fprintf(file, '0 %d %g %g\n', [0:3; 0 100 0 100; 0 0 100 50]);
%! fprintf(file, '%g\n', [0 0 0.01, 0.1 0 0, 1000 0 0]);
%! fprintf(file, '%g %g %g\n', [0 1 0 1.1; 0 0 1 0.55; -10 -10 -10 -11]);
%! fclose(file);
%! refined = tempname();
%! kelvane_write_bal(refined, bal, kelvane_batch(kelvane_read_bal(bal), 'Progress', 'off'))
%! disp(fileread(refined))
