% SPDX-License-Identifier: BSD-3-Clause
% A numeric input as full real doubles; an error that names it and the first bad element when it holds anything else.
function values = checked_numbers(values, name)
  if ~isnumeric(values) && ~islogical(values)
    error('kelvane:notNumeric', '%s must be numbers; this is of class %s.', name, class(values));
  end
  if ~isreal(values)
    error('kelvane:complex', '%s must be real; there is an imaginary part.', name);
  end
  values = full(double(values));
  [row, column] = find(~isfinite(values), 1);
  if ~isempty(row)
    error('kelvane:notFinite', '%s(%d, %d) is %g. All of it must be finite numbers.', name, row, column, ...
          values(row, column));
  end
end
