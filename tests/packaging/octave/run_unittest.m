% SPDX-License-Identifier: BSD-3-Clause
% Runs the tests of a class in tests/matlab on the stand-in for MATLAB's class, each on an object of its own. Those whose
% assumptions fail are named; expected_skips is how many.
function run_unittest(class_name, expected_skips)
  inherited = methods('matlab.unittest.TestCase');
  static = {'scene', 'one_output'};
  names = setdiff(methods(class_name), [inherited; static(:); class_name]);
  skips = 0;
  for name = names'
    try
      object = feval(class_name);
      object.(name{1})();
      fprintf('passed  %s\n', name{1});
    catch problem
      if ~strcmp(problem.identifier, 'kelvane:assumption')
        fprintf('failed  %s: %s\n', name{1}, problem.message);
        exit(1);
      end
      skips = skips + 1;
      fprintf('skipped %s: %s\n', name{1}, problem.message);
    end
  end
  if skips ~= expected_skips || numel(names) == skips
    fprintf('%d tests were skipped of %d; expected were %d\n', skips, numel(names), expected_skips);
    exit(1);
  end
end
