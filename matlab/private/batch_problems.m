% SPDX-License-Identifier: BSD-3-Clause
% The problems of kelvane_batch as a 1 x n struct array with what a refinement needs, a name and options: those of the problem
% over those of all, or [] throughout where none has any of its own. The results are empty but for names and, where own options
% are wrong, errors.
function [problems, results] = batch_problems(given, options)
  if ~isstruct(given) && ~(iscell(given) && all(cellfun('isclass', given(:), 'struct')))
    error('kelvane:problems', 'problems must be a struct array or a cell of structs; this is of class %s.', class(given));
  end
  if isstruct(given)
    problems = with_known_fields(given, 1);
  else
    problems = list_of_cell(given);
  end
  results = struct('name', names_of(problems), 'pose', [], 'info', [], 'exitflag', NaN, 'rms_before', NaN, ...
                   'rms_after', NaN, 'error', '', 'identifier', '');
  [problems, results] = with_own_options(problems, results, options);
end

function names = names_of(problems)
  names = reshape({problems.name}, 1, []);
  nameless = find(cellfun('isempty', names));
  if ~isempty(nameless)
    names(nameless) = cellstr(reshape(sprintf('%-16d', nameless), 16, [])');
  end
  for k = find(~cellfun('isclass', names, 'char'))
    names{k} = checked_text(names{k}, sprintf('problems(%d).name', k));
  end
end

% Structs with the same fields are joined as a whole, which is a hundred times as fast.
function list = list_of_cell(problems)
  k = find(cellfun('prodofsize', problems) ~= 1, 1);
  if ~isempty(k)
    error('kelvane:problems', 'problems{%d} is a struct array of size %s; a cell holds one problem in each struct.', k, ...
          sprintf('%d x %d', size(problems{k})));
  end
  try
    list = with_known_fields([problems{:}], 1);
  catch
    list = with_known_fields(struct([]), 1);
    for k = numel(problems):-1:1
      list(k) = with_known_fields(problems{k}, k);
    end
  end
end

% number is that of the first, for an error.
function list = with_known_fields(problems, number)
  names = {'start', 'points', 'observations', 'intrinsics', 'name', 'options'};
  n = numel(problems);
  arguments = cell(2, numel(names));
  for f = 1:numel(names)
    values = cell(1, n);
    if isfield(problems, names{f})
      values = reshape({problems.(names{f})}, 1, n);
    elseif f >= 2 && f <= 4 && n > 0
      error('kelvane:problems', 'problems(%d) has no field ''%s''.', number, names{f});
    end
    arguments(:, f) = {names{f}; values};
  end
  list = struct(arguments{:});
end

% The options of each problem over those of all, and MATLAB's objects as structs, where any problem has either; an error in
% its row.
function [problems, results] = with_own_options(problems, results, options)
  has_own = ~cellfun('isempty', {problems.options}) | is_object({problems.start}) | is_object({problems.intrinsics});
  if ~any(has_own)
    return;
  end
  own = {problems.options};
  [problems.options] = deal(options);
  for k = find(has_own)
    try
      if ~isempty(own{k})
        problems(k).options = refine_options(own(k), options);
      end
      [problems(k).start, problems(k).options.PoseForm] = plain_pose(problems(k).start, problems(k).options.PoseForm);
      problems(k).intrinsics = plain_object(problems(k).intrinsics, 'cameraIntrinsics');
    catch caught
      results(k).error = caught.message;
      results(k).identifier = caught.identifier;
    end
  end
end

function yes = is_object(values)
  yes = ~cellfun('isclass', values, 'double') & ~cellfun('isclass', values, 'struct') & ~cellfun('isclass', values, 'cell');
  yes(yes) = ~cellfun(@isnumeric, values(yes));
end
