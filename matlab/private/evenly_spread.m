% SPDX-License-Identifier: BSD-3-Clause
% At most that many of the columns of a matrix, spread evenly over them.
function some = evenly_spread(columns, most)
  n = size(columns, 2);
  some = columns(:, unique(round(linspace(1, n, min(n, most)))));
end
