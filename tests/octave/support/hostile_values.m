% SPDX-License-Identifier: BSD-3-Clause
% Values of every class, shape and way of storage that Octave has, as a cell array.
function values = hostile_values()
  values = [of_other_classes(), stored_in_special_ways(), doubles()];
end

function values = of_other_classes()
  values = {};
  shapes = {[0, 0], [0, 4], [3, 0], [1, 1], [1, 4], [4, 1], [1, 9], [9, 1], [3, 4], [2, 4], [4, 3], [3, 2, 2]};
  classes = {'single', 'int8', 'uint8', 'int16', 'uint16', 'int32', 'uint32', 'int64', 'uint64', 'logical', 'char'};
  for k = 1:numel(shapes)
    for j = 1:numel(classes)
      values{end + 1} = feval(classes{j}, ones(shapes{k}));
    end
    values = [values, {cell(shapes{k}), repmat(struct('a', 1), shapes{k}), complex(ones(shapes{k}), 1)}];
    if numel(shapes{k}) == 2
      values = [values, {sparse(ones(shapes{k})), sparse(complex(ones(shapes{k}), 1)), sparse(true(shapes{k}))}];
    end
  end
  values = [values, {@sin, @(x) x + 1, @kelvane_mex, old_style(ones(3, 4)), containers.Map(), ':', '', ...
                     {}, struct(), struct([]), num2cell(1:9), 'a text', ['ab'; 'cd'], single(1):single(9), ...
                     int8(1):int8(9), 1i, complex(1, 0), complex(NaN, Inf), sparse(3, 4), sparse(0, 0)}];
end

% Classes double and logical that are no full matrices inside.
function values = stored_in_special_ways()
  identity = eye(3);
  lazy = 1:9;
  values = {lazy, 1:4, 0:2:16, 9:-1:1, -lazy, lazy + 0.5, 1:0, identity, identity(:, [2, 3, 1]), 2 * identity, ...
            eye(3, 4), eye(2, 4), eye(9)(1, :), eye(4)(:, 1), inv(2 * eye(3)), identity', lazy', lazy(2:5), ...
            sparse(identity), sparse(1:9), true, false, 1 == 1, zeros(1, 9)(:)', ones(3, 4)(:, :), ...
            reshape(1:12, 3, 4), linspace(0, 1, 9), repmat(1, 1, 4), randperm(4)};
end

function values = doubles()
  values = {};
  shapes = {[0, 0], [0, 1], [1, 0], [0, 4], [3, 0], [2, 0], [1, 1], [1, 2], [1, 4], [4, 1], [2, 2], [1, 8], [8, 1], ...
            [1, 9], [9, 1], [1, 10], [10, 1], [3, 4], [2, 4], [4, 3], [3, 2, 2], [2, 2, 2], [1, 1, 9], [3, 1, 4], ...
            [1, 24], [0, 3, 4], [3, 0, 2]};
  entries = [0, -0, 1, -1, 0.5, 10, -3, NaN, NA, Inf, -Inf, 5e-324, 1e-300, 1e300, -1e300, realmax, 2^31, 2^53];
  for k = 1:numel(shapes)
    for entry = entries
      values{end + 1} = repmat(entry, shapes{k});
    end
  end
end
