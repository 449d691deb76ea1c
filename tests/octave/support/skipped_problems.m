% SPDX-License-Identifier: BSD-3-Clause
% Notes how many problems of a set of measurements are here. Without inputs: one line about those that are not, '' where none
% is missing.
function line = skipped_problems(set, num_here)
  persistent missing
  if nargin > 0
    text = fileread(fullfile(fileparts(mfilename('fullpath')), '..', '..', 'data', 'whole_sets.txt'));
    whole = str2double(regexp(text, ['^', set, ' (\d+)$'], 'tokens', 'once', 'lineanchors'));
    assert(num_here <= whole);
    if num_here < whole
      missing.(set) = whole - num_here;
    end
    return;
  end
  line = '';
  if ~isempty(missing)
    counts = struct2cell(missing);
    each = [fieldnames(missing), counts]';
    list = sprintf(', %s %d', each{:});
    line = sprintf('skipped: %d measured problems that are not here (%s)', sum([counts{:}]), list(3:end));
  end
end
