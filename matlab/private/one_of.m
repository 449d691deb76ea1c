% SPDX-License-Identifier: BSD-3-Clause
% The entry of a list of names that a given text means, whatever its capitals; an error with the nearest name, where one is
% near, otherwise. what says in the error what kind of thing the names are.
function name = one_of(given, names, identifier, what)
  name = given;
  if ischar(given) && any(strcmp(given, names))
    return;
  elseif isa(given, 'string')  % MATLAB's text objects
    given = char(given);
  end
  if ~ischar(given)
    error(identifier, 'The %s must be a text, one of %s; this one is of class %s.', what, in_words(names), class(given));
  end
  found = find(strcmpi(given, names), 1);
  if isempty(found)
    error(identifier, '''%s'' is not a%s %s.%s There are %s.', given, vowel(what), what, hint(given, names), in_words(names));
  end
  name = names{found};
end

function n = vowel(what)
  n = repmat('n', 1, any(lower(what(1)) == 'aeio'));
end

function text = in_words(names)
  quoted = strcat('''', names, '''');
  if numel(quoted) == 2
    text = [quoted{1}, ' and ', quoted{2}];
  else
    text = [sprintf('%s, ', quoted{1:end - 1}), 'and ', quoted{end}];
  end
end

% The name that is most likely meant, if any is: the one with the least part of its letters to insert, drop or change,
% capitals aside, at most half of them. A name that begins with what was given comes first: people abbreviate.
function text = hint(given, names)
  distance = zeros(1, numel(names));
  for i = 1:numel(names)
    distance(i) = edits(lower(given), lower(names{i})) / max([1, numel(given), numel(names{i})]);
    if ~isempty(given) && strncmpi(given, names{i}, numel(given))
      distance(i) = 0;
    end
  end
  [least, i] = min(distance);
  text = '';
  if least <= 0.5
    text = sprintf(' Did you mean ''%s''?', names{i});
  end
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
