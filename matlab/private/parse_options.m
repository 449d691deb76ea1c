% SPDX-License-Identifier: BSD-3-Clause
% Options from pairs of name and value, or structs of them, over their defaults. Names may be in any capitals; an unknown
% one is an error that suggests the nearest. caller is named in errors.
function options = parse_options(caller, defaults, given)
  options = defaults;
  i = 1;
  while i <= numel(given)
    name = given{i};
    if isstruct(name)
      if ~isscalar(name)
        error('kelvane:option', '%s: options come in one struct; this is an array of %d, which struct() makes of a cell.', ...
              caller, numel(name));
      end
      options = parse_options(caller, options, pairs_of(name));
      i = i + 1;
      continue;
    elseif i == numel(given)
      error('kelvane:noValue', '%s: options come as name and value; the last one has no value.', caller);
    elseif ~ischar(name) || ~isfield(options, name)
      name = full_name(caller, name, fieldnames(options));
    end
    options.(name) = given{i + 1};
    if isa(options.(name), 'string')
      options.(name) = char(options.(name));
    end
    i = i + 2;
  end
end

function list = pairs_of(given)
  list = [fieldnames(given), struct2cell(given)]';
  list = list(:)';
end

function name = full_name(caller, given, names)
  if ischar(given) && any(strcmp(caller, {'kelvane_refine', 'kelvane_batch'})) && any(strcmpi(given, {'RotationType', 'Jacobian'}))
    error('kelvane:unknownOption', ['''%s'' is no option of %s any more: the pose is the same without it. kelvane_mex has ' ...
          'all ten rotation types and finite differences.'], given, caller);
  end
  name = one_of(given, names, 'kelvane:unknownOption', ['option of ', caller]);
end
