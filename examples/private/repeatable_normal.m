% SPDX-License-Identifier: BSD-3-Clause
% Normal numbers, rows x columns, that are the same in every host for the same seed (a whole number of 1 or more): Lehmer's
% generator (Park, Miller 1988) under Box and Muller's map.
function numbers = repeatable_normal(rows, columns, seed)
  state = 7919 * seed;
  uniform = zeros(2, rows * columns + 10);
  for k = 1:numel(uniform)
    state = mod(16807 * state, 2147483647);
    uniform(k) = state / 2147483647;
  end
  uniform = uniform(:, 11:end);  % the first ones of neighbouring seeds are alike
  numbers = reshape(sqrt(-2 * log(uniform(1, :))) .* cos(2 * pi * uniform(2, :)), rows, columns);
end
