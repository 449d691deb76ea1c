% SPDX-License-Identifier: BSD-3-Clause
% A vector of a given number of finite elements as a row; an error that names it otherwise.
function v = checked_vector(v, num_elements, name)
  v = checked_numbers(v, name);
  if ~isvector(v) || numel(v) ~= num_elements
    error('kelvane:size', '%s must be a vector of %d elements; this is %d x %d.', name, num_elements, size(v, 1), size(v, 2));
  end
  v = v(:)';
end
