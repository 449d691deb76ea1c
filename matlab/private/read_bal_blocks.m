% SPDX-License-Identifier: BSD-3-Clause
% The three blocks of a file of Bundle Adjustment in the Large: what was seen (4 x n: camera and point from 0, x, y), the
% cameras (9 x c) and the points (3 x p). Numbers may be spread over lines in any way.
function [seen, cameras, points] = read_bal_blocks(file)
  text = text_of_file(file);
  if strncmp(text, 'BZh', 3)
    error('kelvane:file', '%s is compressed. Run bunzip2 on it first.', file);
  end
  [numbers, ~, ~, next] = sscanf(text, '%f');
  if ~isempty(strtrim(text(next:end)))
    file_error(file, 1 + sum(text(1:next - 1) == sprintf('\n')), '''%s'' is not a number.', strtok(text(next:end)));
  end
  fail_at = @(i, varargin) file_error(file, line_of_number(text, i), varargin{:});
  bad = find(~isfinite(numbers), 1);
  if ~isempty(bad)
    fail_at(bad, 'this number is not finite.');
  end
  sizes = numbers(1:min(3, end));
  if numel(sizes) < 3 || any(sizes < 0) || any(sizes ~= round(sizes))
    file_error(file, 1, 'a file begins with three whole numbers: of cameras, points and observations.');
  end
  expected = 3 + [9, 3, 4] * sizes;
  if numel(numbers) < expected
    fail_at(numel(numbers), 'the file ends after %d of %d numbers.', numel(numbers), expected);
  elseif numel(numbers) > expected
    fail_at(expected + 1, '%d numbers are more than the %d that the first line announces.', numel(numbers), expected);
  end
  starts = 3 + cumsum([0, 4 * sizes(3), 9 * sizes(1)]);
  seen = reshape(numbers(starts(1) + 1:starts(2)), 4, []);
  cameras = reshape(numbers(starts(2) + 1:starts(3)), 9, []);
  points = reshape(numbers(starts(3) + 1:end), 3, []);
  check_indices(seen(1:2, :), sizes, fail_at);
  dark = find(cameras(7, :) <= 0, 1);
  if ~isempty(dark)
    fail_at(starts(2) + 9 * dark - 2, 'the focal length of camera %d is %g; it must be above 0.', dark - 1, cameras(7, dark));
  end
end

function check_indices(indices, sizes, fail_at)
  names = {'camera', 'point'};
  for k = 1:2
    i = indices(k, :);
    bad = find(i < 0 | i >= sizes(k) | i ~= round(i), 1);
    if ~isempty(bad)
      fail_at(3 + 4 * (bad - 1) + k, 'there is no %s %g; the last one is %d.', names{k}, i(bad), sizes(k) - 1);
    end
  end
end

function line = line_of_number(text, i)
  starts = regexp(text, '\S+', 'start');
  line = 1 + sum(text(1:starts(i) - 1) == sprintf('\n'));
end
