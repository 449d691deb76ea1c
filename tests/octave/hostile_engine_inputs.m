% SPDX-License-Identifier: BSD-3-Clause
% Calls kelvane_engine with hostile values in every input, cell and field, and every number of inputs and outputs: every
% value in a long run, one of `stride` otherwise, others at the next place. Each call must give what was asked for or raise
% an error of its own, leave the values as they were, and the second problem to the last bit. Prints one line at the end:
% what else appears came from inside the module.
function hostile_engine_inputs(stride)
  if ~isempty(getenv('KELVANE_LONG'))
    stride = 1;
  end
  values = hostile_values();
  bytes = cellfun(@image_of, values, 'UniformOutput', false);
  first = 0;
  num_places = 0;
  for call = engine_calls()
    good = kelvane_engine(call{1}{:});
    is_refinement = any(strcmp(call{1}{1}, {'refine', 'estimate'}));
    if is_refinement
      second = [good.pose(:, 2); good.figures(:, 2)];
    end
    for place = places_in(call{1})  % 1 x 1 cells
      first = mod(first + 1, stride);
      is_own = is_refinement && numel(place{1}) > 1 && place{1}{2} == 1;  % of the first problem, which may fail alone
      for k = 1 + first:stride:numel(values)
        given = put(call{1}, place{1}, values{k});
        result = call_and_check(given, 1);
        if is_own && ~isequal([result.pose(:, 2); result.figures(:, 2)], second)  % assert itself would take longer
          error('value %d changes another problem', k);
        elseif ~strcmp(image_of(values{k}), bytes{k})
          error('value %d was changed', k);
        end
      end
      num_places = num_places + 1;
    end
    counts(call{1});
  end
  assert(num_places > 50);
  for k = 1:numel(values)
    call_and_check(repmat(values(k), 1, 5), 1);  % one array at several positions
    call_and_check([{'refine'}, repmat({values(k)}, 1, 4), {struct(), {}}], 1);
    call_and_check([{'estimate'}, repmat({values(k)}, 1, 3), {struct(), {}}], 1);
  end
  fprintf('every value at every place\n');
end

% The way to every input and to all that lies in their cells and fields: a cell of numbers, and of a struct array a number
% and a field.
function places = places_in(inputs)
  places = {};
  for i = 1:numel(inputs)
    places = [places, places_below(inputs{i}, {i})]; %#ok<AGROW>
  end
end

function places = places_below(value, place)
  places = {place};
  if iscell(value)
    for k = 1:numel(value)
      places = [places, places_below(value{k}, [place, {k}])]; %#ok<AGROW>
    end
  elseif isstruct(value)
    for k = 1:numel(value)
      for field = fieldnames(value)'
        places = [places, places_below(value(k).(field{1}), [place, {k}, field])]; %#ok<AGROW>
      end
    end
  end
end

% The inputs with another value at a place.
function value = put(value, place, other)
  if isempty(place)
    value = other;
  elseif iscell(value)
    value{place{1}} = put(value{place{1}}, place(2:end), other);
  else
    value(place{1}).(place{2}) = put(value(place{1}).(place{2}), place(3:end), other);
  end
end

function counts(inputs)
  inputs = [inputs, {1, 2, 3, 4}];
  for num_inputs = 0:numel(inputs)
    for num_outputs = 0:4
      call_and_check(inputs(1:num_inputs), num_outputs);
    end
  end
end

% The first output, [] after an error; anything but that and an error of the module's own is an error here.
function result = call_and_check(given, num_outputs)
  result = [];
  outputs = cell(1, max(1, num_outputs));
  try
    [outputs{1:num_outputs}] = kelvane_engine(given{:});
    result = outputs{1};
  catch problem
    is_told = strncmp(problem.identifier, 'kelvane:', 8) && strncmp(problem.message, 'kelvane_engine: ', 16) && ...
              numel(problem.message) > 20 && isempty(strfind(problem.message, '::'));
    if ~is_told
      error('not an error of kelvane_engine but %s: %s', problem.identifier, problem.message);
    end
  end
end
