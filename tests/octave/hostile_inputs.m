% SPDX-License-Identifier: BSD-3-Clause
% Calls kelvane_mex with every hostile value at every position and every number of inputs and outputs. Each call must give
% a pose or raise the one report, and leave its inputs and their aliases as they were. Prints one line at the end: what
% else appears came from inside the module.
function hostile_inputs(kinds)
  if nargin < 1
    kinds = [0, 0; -1, 1; 11, 0];  % rotation type, and whether by differences
  end
  if ~isempty(getenv('KELVANE_LONG'))
    types = [0:3, 10:12, -3:-1]';
    kinds = [types, 0 * types; types, 0 * types + 1];
  end
  values = hostile_values();
  bytes = images_of(values);
  is_readable = cellfun(@(value) isa(value, 'double') && isreal(value) && ~issparse(value), values);
  num_poses = 0;
  for kind = kinds'
    inputs = inputs_of(kind(1), kind(2));
    good_bytes = images_of(inputs);
    for position = 1:6
      for k = 1:numel(values)
        given = inputs;
        given{position} = values{k};  % an alias: both show the same array
        is_pose = call_and_check(given, 1);
        num_poses = num_poses + is_pose;
        assert(is_readable(k) || ~is_pose, 'value %d was accepted as input %d', k, position);
        assert(strcmp(image_of(values{k}), bytes{k}), 'value %d was changed as input %d', k, position);
      end
    end
    assert(images_of(inputs), good_bytes);
  end
  num_calls = 6 * numel(values) * rows(kinds);
  assert(num_poses > num_calls / 50 && num_poses < num_calls / 2);
  for k = 1:numel(values)
    call_and_check(repmat(values(k), 1, 3), 1);  % one array at several positions
    call_and_check(repmat(values(k), 1, 6), 1);
  end
  assert(images_of(values), bytes);
  counts();
  fprintf('every value at every position\n');
end

function counts()
  inputs = [inputs_of(0, 0), {1, 2, 3}];
  for num_inputs = 0:9
    for num_outputs = 0:3
      is_pose = call_and_check(inputs(1:num_inputs), num_outputs);
      assert(is_pose, num_inputs >= 3 && num_inputs <= 6 && num_outputs == 1);
    end
  end
  for num_points = 0:3
    is_pose = call_and_check({inputs{1}, inputs{2}(:, 1:num_points), inputs{3}(:, 1:num_points)}, 1);
    assert(is_pose, num_points == 3);
  end
  million = repmat(inputs{2}, 1, 250000);
  assert(call_and_check({inputs{1}, million, repmat(inputs{3}, 1, 250000), [1, 0, -10000, 0], 0}, 1));
  for position = 1:6
    is_pose = call_and_check([inputs(1:position - 1), {million}, inputs(position + 1:6)], 1);
    assert(~is_pose);
  end
end

function inputs = inputs_of(type, flag)
  if type < 10
    inputs = valid_inputs(type);
  else
    rotation = [1, 0, 0, 0.1](1:3 + (type > 10));
    inputs = {[rotation, 0, 0, -3, 1, 0, 0], [0, 1, 0, 1; 0, 0, 1, 1; 0, 0.1, 0.2, 0], ones(3, 4), 0, type, ones(1, 12)};
  end
  inputs{4} = [10, 0, -10000, flag];
end

% Whether the call gave a pose; anything but that and the report is an error.
function is_pose = call_and_check(given, num_outputs)
  x = 'as before';
  y = 'as before';
  identifier = '';
  try
    switch num_outputs
      case 0
        kelvane_mex(given{:});
      case 1
        x = kelvane_mex(given{:});
      case 2
        [x, y] = kelvane_mex(given{:});
      otherwise
        [x, y, z] = kelvane_mex(given{:});
    end
  catch problem
    identifier = problem.identifier;
    is_from_module = ~isempty(strfind(problem.message(1:min(40, end)), 'kelvane_mex.cpp('));
  end
  is_pose = isempty(identifier);
  if is_pose
    ends_well = isa(x, 'double') && isreal(x) && rows(x) == 1 && any(columns(x) == [6, 7]);
  else
    ends_well = strcmp(identifier, 'Mex:exception') && is_from_module && strcmp(x, 'as before');
  end
  if ~(ends_well && strcmp(y, 'as before'))  % assert itself would take longer than the call
    error('neither a pose nor the report, but "%s" and %s', identifier, disp(x));
  end
end

function images = images_of(values)
  images = cellfun(@image_of, values, 'UniformOutput', false);
end
