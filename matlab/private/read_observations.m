% SPDX-License-Identifier: BSD-3-Clause
% Observations with one point in each column: 2 x n pixels or 3 x n unit bearings. in_rows tells that pixels came as n x 2.
function [observations, in_rows] = read_observations(observations)
  observations = checked_numbers(observations, 'observations');
  [rows, columns] = size(observations);
  if isequal([rows, columns], [2, 2])
    error('kelvane:ambiguous', ['2 x 2 observations may be two columns or two rows, and two points do not determine ' ...
          'a pose. Three points are the least.']);
  end
  in_rows = columns == 2;
  if in_rows
    observations = observations';
  elseif rows ~= 2 && rows ~= 3
    error('kelvane:size', ['observations must be 2 x N or N x 2 (pixels) or 3 x N (bearing vectors); this is ' ...
          '%d x %d.'], rows, columns);
  end
  if size(observations, 2) < 3
    error('kelvane:tooFewPoints', 'Three points are the least that determine a pose; there are %d.', size(observations, 2));
  end
  if size(observations, 1) == 3
    observations = unit_bearings(observations);
  end
end

function b = unit_bearings(b)
  lengths = sqrt(sum(b.^2, 1));
  bad = find(lengths < 1e-10, 1);
  if ~isempty(bad)
    error('kelvane:zeroBearing', 'observations(:, %d) has the length %.2g: a bearing needs a direction.', bad, lengths(bad));
  end
  b = b ./ lengths;
end
