% SPDX-License-Identifier: BSD-3-Clause
% Prints the results of calls of all types, to the bit, and reports from every depth.
function results_and_reports()
  for type = [0:3, -3:-1]
    inputs = valid_inputs(type);
    for flag = 0:1
      inputs{4}(4) = flag;
      printf('%d %d:%s\n', type, flag, sprintf(' %s', num2hex(kelvane_mex(inputs{:}))'));
    end
  end
  inputs = valid_inputs();
  disp(caught({}));
  disp(caught({inputs{1}, inputs{2}(:, 1:2), inputs{3}(:, 1:2)}));
  disp(caught({[0.1, 0.2, 0.3, 0, 0, -3, 500, 0, 0], inputs{2}, ones(3, 4), inputs{4}, 10}));
  printf('all results and reports\n');
end
