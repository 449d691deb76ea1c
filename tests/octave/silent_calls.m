% SPDX-License-Identifier: BSD-3-Clause
% Calls kelvane_mex and kelvane_engine in every way and prints one line of its own. Whatever else appears came from inside the module.
function silent_calls()
  for type = [0:3, -3:-1]
    inputs = valid_inputs(type);
    x = kelvane_mex(inputs{:}); %#ok<NASGU>
    inputs{4}(4) = 1;
    x = kelvane_mex(inputs{:}); %#ok<NASGU>
  end
  inputs = valid_inputs();
  x = kelvane_mex(inputs{1:3}); %#ok<NASGU>
  bearings = [zeros(1, 2), 1, 0.1; zeros(1, 2), 1, 0; ones(1, 4)];
  for type = 10:12
    for flag = 0:1
      rotation = eye(1, 3 + (type > 10));
      x = kelvane_mex([rotation, 0, 0, -3, 1, 0, 0], inputs{2}, bearings, [0, 0, 0, flag], type); %#ok<NASGU>
    end
  end
  for type = [-1, -2]  % no rotation: their Jacobians are not finite
    rotation = {[0, 0, 0, 1], [0, 0, 0]};
    x = kelvane_mex([rotation{-type}, 0, 0, -3, 1, 0, 0], inputs{2:4}, type); %#ok<NASGU>
  end
  caught({});
  caught(inputs, 0);
  caught(with(1, 'text'));
  caught({inputs{1}, zeros(3, 0), zeros(2, 0)});
  x = kelvane_mex(nan(1, 9), inputs{2:3}); %#ok<NASGU>
  engine();
  fprintf('all calls made\n');
end

function engine()
  for call = engine_calls()
    inputs = call{1};
    x = kelvane_engine(inputs{:}); %#ok<NASGU>
    for k = 1:numel(inputs)
      fails([inputs(1:k - 1), {@sin}, inputs(k + 1:end)]);
    end
  end
  inputs = engine_calls(){1};
  inputs(8:9) = {0, 3};  % left after each iteration, on threads
  for k = 1:10
    found = kelvane_engine(inputs{:});
    inputs{7}(1:numel(found.state)) = found.state;
  end
  inputs{4}{1} = inputs{4}{1} + Inf;
  inputs{2}{2} = NaN(1, 6);
  x = kelvane_engine(inputs{:});
  assert(~any(x.is_found));
end

function fails(inputs)
  try
    x = kelvane_engine(inputs{:}); %#ok<NASGU>
  catch problem
    assert(strncmp(problem.identifier, 'kelvane:', 8));
  end
end
