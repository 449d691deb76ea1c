% SPDX-License-Identifier: BSD-3-Clause
% Runs the test blocks of one file, shows those that fail, and ends Octave with an error when any did or there were none. Says in
% one line how many measured problems they did without.
function run_tests(file)
  [passed, total] = test(file, 'quiet', 1);
  skipped = skipped_problems();
  if ~isempty(skipped)
    disp(skipped);
  end
  fprintf('%d passed, %d failed\n', passed, total - passed);
  if passed < total || total == 0
    exit(1);
  end
end
