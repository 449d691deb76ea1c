% KELVANE_WRITE_CSV  Write the results of a batch as a table.
%
%   kelvane_write_csv(results, file)
%
%   results is what kelvane_batch returned. file gets a line of titles and a line for each result, with commas between the
%   numbers, 17 digits each, and NaN for what there is not:
%     name                             of the problem, in double quotes where it holds a comma, a quote or a line end
%     exitflag, rms_before, rms_after  as in results
%     num_points, num_inliers          how many
%     qw, qx, qy, qz, tx, ty, tz       pose as COLMAP writes it: camera from world, unit quaternion, scalar first; of
%                                      BAL's cameras in their own frame, which looks along -z
%     cx, cy, cz                       camera centre, world unit
%     sigma_wx, sigma_wy, sigma_wz     standard deviations of the rotation: about the axes of the camera, radians
%     sigma_cx, sigma_cy, sigma_cz     of the centre, world unit
%     error                            the error's message
%   Either the whole file is written or, after an error, a full disk or an interruption, it is as it was.
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> truth = kelvane_pose([0 0 0, 0 0 -4], 'rotation_vector', 'world_from_camera');
%     >> problem = struct('name', 'first', 'start', truth, 'points', points, 'intrinsics', [500 320 240], ...
%     ..                  'observations', kelvane_project(truth, points, [500 320 240]));
%     >> results = kelvane_batch(problem, 'Progress', 'off');
%     >> table = [tempname(), '.csv'];
%     >> kelvane_write_csv(results, table);
%     >> lines = strsplit(fileread(table), sprintf('\n'));
%     >> lines{1}(1:40)
%     ans = name,exitflag,rms_before,rms_after,num_p
%     >> strtok(lines{2}, ',')
%     ans = first
%
%
%   See also kelvane_batch, kelvane_write_colmap, kelvane_write_bal.

% SPDX-License-Identifier: BSD-3-Clause
% Results for spreadsheets and scripts.
function kelvane_write_csv(results, file)
  if nargin < 2
    error('kelvane:inputs', 'kelvane_write_csv needs results and the name of a file.');
  elseif ~isstruct(results) || ~all(isfield(results, {'name', 'info', 'exitflag', 'rms_before', 'rms_after', 'error'}))
    error('kelvane:results', 'results must be the struct array that kelvane_batch returns; this is of class %s.', class(results));
  end
  titles = ['name,exitflag,rms_before,rms_after,num_points,num_inliers,qw,qx,qy,qz,tx,ty,tz,cx,cy,cz,', ...
            'sigma_wx,sigma_wy,sigma_wz,sigma_cx,sigma_cy,sigma_cz,error'];
  lines = cell(1, numel(results));
  for k = 1:numel(results)
    row = results(k);
    lines{k} = [field(row.name), sprintf(',%.17g', row.exitflag, row.rms_before, row.rms_after, values_of(row.info)), ',', ...
                field(row.error)];
  end
  call_engine('write_file', file_name(file, 'file'), sprintf('%s\n', titles, lines{:}));
end

function values = values_of(info)
  values = NaN(1, 18);
  if ~isempty(info)
    pose = {NaN(1, 4), NaN(1, 3)};
    if ~any(isnan(info.pose.centre))
      pose = kelvane_pose(info.pose, 'colmap');
    end
    values = [size(info.points, 2), info.num_inliers, pose{1}, pose{2}, info.pose.centre', sqrt(diag(info.covariance))'];
  end
end

function text = field(text)
  if any(ismember(text, sprintf(',"\n\r')))
    text = ['"', strrep(text, '"', '""'), '"'];
  end
end

%!error <needs results and the name of a file> kelvane_write_csv(struct())
%!error <results must be the struct array> kelvane_write_csv(struct('name', 'a'), 'file')
%!error <file must be a text; this is of class double> kelvane_write_csv(kelvane_batch({}), 3)

%!test  % no pose where an estimate has found none
%! problem = struct('points', eye(3), 'observations', [1 2 3; 4 5 7], 'intrinsics', [500 320 240]);
%! file = tempname();
%! kelvane_write_csv(kelvane_batch(problem, 'Progress', 'off'), file);
%! lines = strsplit(fileread(file), "\n");
%! delete(file);
%! assert(lines{2}, ['1,-4', repmat(',NaN', 1, 2), ',3,0', repmat(',NaN', 1, 10), repmat(',Inf', 1, 6), ',']);

%!test  % every number reads back, names keep their commas, an error leaves NaN
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! start = kelvane_pose([0.1 0.2 0, 0.1 0.2 -4], 'rotation_vector', 'world_from_camera');
%! pixels = kelvane_project(start, points, [500 320 240]) + 0.3 * sin([1:6; 3:8]);
%! problems = struct('name', {'a, "b"', 'c'}, 'start', start, 'points', {points, points(:, 1:2)}, 'observations', ...
%!                   {pixels, pixels(:, 1:2)}, 'intrinsics', [500 320 240]);
%! results = kelvane_batch(problems, 'Progress', 'off');
%! file = tempname();
%! kelvane_write_csv(results, file);
%! lines = strsplit(fileread(file), "\n");
%! delete(file);
%! assert(numel(lines), 4);
%! assert(strncmp(lines{2}, '"a, ""b""",', 11));
%! values = str2double(strsplit(lines{2}(12:end), ','));
%! info = results(1).info;
%! pose = kelvane_pose(info.pose, 'colmap');
%! assert(values(1:21), [info.exitflag, info.rms_before, info.rms_after, 6, 6, pose{:}, info.pose.centre', ...
%!                       sqrt(diag(info.covariance))']);
%! assert(numel(strsplit(lines{1}, ',')), numel(values) + 1);
%! assert(strncmp(lines{3}, ['c', repmat(',NaN', 1, 21), ',"'], 87));
%! assert(lines{3}(end - numel(results(2).error):end - 1), results(2).error(1:end));

%!demo
%! % the first lines of a table of results
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! start = kelvane_pose([0 0 0, 0 0 -4], 'rotation_vector', 'world_from_camera');
%! problem = struct('start', start, 'points', points, 'intrinsics', [500 320 240], ...
%!                  'observations', kelvane_project(start, points, [500 320 240]) + 1);
%! table = [tempname(), '.csv'];
%! kelvane_write_csv(kelvane_batch(problem, 'Progress', 'off'), table)
%! disp(fileread(table))
