% SPDX-License-Identifier: BSD-3-Clause
% Which of the lines of a COLMAP file hold data: neither blank nor a comment. A logical row.
function yes = rows_of_data(lines)
  yes = ~cellfun(@isempty, regexp(lines, '^\s*[^#\s]', 'once'));
end
