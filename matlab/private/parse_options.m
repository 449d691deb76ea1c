% SPDX-License-Identifier: BSD-3-Clause
% Options from pairs of name and value, or structs of them, over their defaults. Names may be in any capitals; an unknown
% one is an error that suggests the nearest. caller is named in errors.
function options = parse_options(caller, defaults, given)
  options = defaults;
  names = fieldnames(defaults);
  i = 1;
  while i <= numel(given)
    if isstruct(given{i})
      if ~isscalar(given{i})
        error('kelvane:option', '%s: options come in one struct; this is an array of %d, which struct() makes of a cell.', ...
              caller, numel(given{i}));
      end
      options = parse_options(caller, options, pairs_of(given{i}));
      i = i + 1;
    elseif i == numel(given)
      error('kelvane:noValue', '%s: options come as name and value; the last one has no value.', caller);
    else
      name = one_of(given{i}, names, 'kelvane:unknownOption', ['option of ', caller]);
      value = given{i + 1};
      if isa(value, 'string')
        value = char(value);
      end
      options.(name) = value;
      i = i + 2;
    end
  end
end

function list = pairs_of(given)
  list = [fieldnames(given), struct2cell(given)]';
  list = list(:)';
end
