% SPDX-License-Identifier: BSD-3-Clause
% Prints the standard deviations of num_draws refinements of simulated noise over those that the covariance tells, as a
% table in Markdown; an error where one is off by more than 10 %.
function print_covariance(num_draws)
  fprintf('| Cost | w1 | w2 | w3 | t1 | t2 | t3 | Mean square, 6 expected |\n| --- | --- | --- | --- | --- | --- | --- | --- |\n');
  for loss = {'none', 'huber', 'cauchy', 'tukey', 'directions'}
    [ratios, mean_square] = covariance_ratios(loss{1}, num_draws, 77);
    fprintf('| %s |%s %.2f |\n', loss{1}, sprintf(' %.3f |', ratios), mean_square);
    fflush(stdout);
    if any(abs(ratios - 1) > 0.1)
      error('kelvane:tests', 'A standard deviation is off by more than 10 %%.');
    end
  end
end
