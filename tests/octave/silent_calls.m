% SPDX-License-Identifier: BSD-3-Clause
% Calls kelvane_mex in every way and prints one line of its own. Whatever else appears came from inside the module.
function silent_calls()
  for type = 0:3
    inputs = valid_inputs(type);
    x = kelvane_mex(inputs{:}); %#ok<NASGU>
    inputs{4}(4) = 1;
    x = kelvane_mex(inputs{:}); %#ok<NASGU>
  end
  inputs = valid_inputs();
  x = kelvane_mex(inputs{1:3}); %#ok<NASGU>
  caught({});
  caught(inputs, 0);
  caught(with(1, 'text'));
  caught({inputs{1}, zeros(3, 0), zeros(2, 0)});
  x = kelvane_mex(nan(1, 9), inputs{2:3}); %#ok<NASGU>
  fprintf('all calls made\n');
end
