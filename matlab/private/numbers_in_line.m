% SPDX-License-Identifier: BSD-3-Clause
% All numbers of a text, or its first ones and the rest of the text; an error with file and line where something else comes
% first or a number is not finite.
function [numbers, rest] = numbers_in_line(text, file, line, how_many)
  if nargin < 4
    how_many = Inf;
  end
  [numbers, ~, ~, next] = sscanf(text, '%f', how_many);
  numbers = reshape(numbers, 1, []);
  rest = '';
  if next <= numel(text)
    rest = strtrim(text(next:end));
  end
  if numel(numbers) < how_many && ~(isinf(how_many) && isempty(rest))
    if isempty(rest)
      file_error(file, line, 'it ends after %d of %d numbers.', numel(numbers), how_many);
    end
    file_error(file, line, '''%s'' is not a number.', strtok(rest));
  end
  if ~all(isfinite(numbers))
    file_error(file, line, 'number %d is not finite.', find(~isfinite(numbers), 1));
  end
end
