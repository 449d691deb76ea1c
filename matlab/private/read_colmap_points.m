% SPDX-License-Identifier: BSD-3-Clause
% The ids (1 x n) and positions (3 x n) of the points of COLMAP's points3D.txt.
function [ids, positions] = read_colmap_points(file)
  [lines, has_data] = lines_of_file(file);
  rows = find(has_data);
  values = zeros(4, numel(rows));
  for i = 1:numel(rows)
    v = numbers_in_line(lines{rows(i)}, file, rows(i));
    if numel(v) < 8 || mod(numel(v), 2) ~= 0
      file_error(file, rows(i), ['a point has its id, X, Y, Z, R, G, B, an error and pairs of IMAGE_ID and POINT2D_IDX; ' ...
                 'here are %d numbers.'], numel(v));
    end
    values(:, i) = v(1:4);
  end
  ids = values(1, :);
  positions = values(2:4, :);
  [sorted, order] = sort(ids);
  twice = find(diff(sorted) == 0, 1);
  if ~isempty(twice)
    file_error(file, rows(order(twice + 1)), 'there are two points %d.', sorted(twice));
  end
end
