% SPDX-License-Identifier: BSD-3-Clause
% The example in the help text of a function, and what it is said to print, lines without blanks around them.
function [code, output] = help_example(name)
  lines = strsplit(get_help_text(name), "\n", 'CollapseDelimiters', false);
  trimmed = strtrim(lines);
  first = find(strcmp(trimmed, 'Example:'), 1);
  middle = find(strcmp(trimmed, 'Output:'), 1);
  last = middle + find(cellfun(@isempty, trimmed(middle + 1:end)), 1);
  if numel([first, middle, last]) ~= 3
    error('kelvane:tests', 'The help of %s has no example with its output.', name);
  end
  code = strjoin(lines(first + 1:middle - 1), "\n");
  output = trimmed(middle + 1:last - 1);
end
