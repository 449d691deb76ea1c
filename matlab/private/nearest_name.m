% SPDX-License-Identifier: BSD-3-Clause
% The name that a misspelt one most likely means: the least number of letters to insert, drop or change, capitals aside.
% A name that begins with what was given comes first: people abbreviate.
function name = nearest_name(given, names)
  distance = zeros(1, numel(names));
  for i = 1:numel(names)
    distance(i) = edits(lower(given), lower(names{i}));
    if strncmpi(given, names{i}, max(1, numel(given)))
      distance(i) = 0;
    end
  end
  [~, i] = min(distance);
  name = names{i};
end

% Levenshtein's distance, row by row of its table.
function d = edits(a, b)
  row = 0:numel(b);
  for i = 1:numel(a)
    previous = row;
    row(1) = i;
    for j = 1:numel(b)
      row(j + 1) = min([previous(j + 1) + 1, row(j) + 1, previous(j) + (a(i) ~= b(j))]);
    end
  end
  d = row(end);
end
