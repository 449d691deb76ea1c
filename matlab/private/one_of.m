% SPDX-License-Identifier: BSD-3-Clause
% The entry of a list of names that a given text means, whatever its capitals; an error with the nearest name otherwise.
% what says in the error what kind of thing the names are.
function name = one_of(given, names, identifier, what)
  if isa(given, 'string')  % MATLAB's text objects
    given = char(given);
  end
  if ~ischar(given)
    error(identifier, 'The %s must be a text, one of %s; this one is of class %s.', what, in_words(names), class(given));
  end
  found = find(strcmpi(given, names), 1);
  if isempty(found)
    error(identifier, '''%s'' is not a%s %s. Did you mean ''%s''? There are %s.', given, vowel(what), what, ...
          nearest_name(given, names), in_words(names));
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
