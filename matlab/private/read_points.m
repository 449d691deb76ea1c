% SPDX-License-Identifier: BSD-3-Clause
% World points as 3 x n. n x 3 is taken as well; of three points, points and observations must both lie in columns or both
% in rows. Without n any number will do.
function points = read_points(points, n, in_rows)
  points = checked_numbers(points, 'points');
  [rows, columns] = size(points);
  if nargin < 2
    n = columns;
    in_rows = rows ~= 3 && columns == 3;
    if in_rows
      n = rows;
    end
  end
  if rows == 3 && columns == n && ~(n == 3 && in_rows)
    return;
  elseif rows == n && columns == 3
    points = points';
  elseif nargin < 2
    error('kelvane:size', 'points must be 3 x N or N x 3; this is %d x %d.', rows, columns);
  else
    error('kelvane:size', 'points must be 3 x %d or %d x 3, as there are %d observations; this is %d x %d.', n, n, n, ...
          rows, columns);
  end
end
