% SPDX-License-Identifier: BSD-3-Clause
% The lines of a text file in a cell, where the end of the last line begins no further one; and, as a logical row, which of
% them hold data as COLMAP sees it: neither blank nor a comment.
function [lines, has_data] = lines_of_file(file)
  lines = regexp(text_of_file(file), '\n', 'split');
  if isempty(lines{end})
    lines(end) = [];
  end
  has_data = ~cellfun(@isempty, regexp(lines, '^\s*[^#\s]', 'once'));
end
