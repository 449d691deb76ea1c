% SPDX-License-Identifier: BSD-3-Clause
% The lines of a text file in a cell; the end of the last line begins no further one.
function lines = lines_of_file(file)
  lines = regexp(text_of_file(file), '\n', 'split');
  if isempty(lines{end})
    lines(end) = [];
  end
end
