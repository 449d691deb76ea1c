% SPDX-License-Identifier: BSD-3-Clause
% The whole message of the error that kelvane_mex raises for a cell array of inputs, checked for its identifier and for
% leaving the output alone. num_outputs is 1 unless given.
function message = caught(inputs, num_outputs)
  if nargin < 2
    num_outputs = 1;
  end
  message = '';
  x = 'as before';
  y = 'as before';
  try
    switch num_outputs
      case 0
        kelvane_mex(inputs{:});
      case 1
        x = kelvane_mex(inputs{:});
      otherwise
        [x, y] = kelvane_mex(inputs{:});
    end
  catch problem
    assert(problem.identifier, 'Mex:exception');
    message = problem.message;
  end
  assert(~isempty(message), 'kelvane_mex accepted the inputs');
  assert({x, y}, {'as before', 'as before'});
end
