% SPDX-License-Identifier: BSD-3-Clause
% The message, as Octave shows it, of an error inside an iteration. innermost is the text of the error itself; its level
% is 0 for an error of ours, and -1 for one of a library, which carries none.
function message = deep_report(num_points, num_equations, level, innermost)
  vector = 'const std::vector<double, std::allocator<double> >&';
  message = with_context(level + 1, innermost, 'fw_opt/linear_taylor_solver.cpp(200)', ...
    ['virtual void fw::Linear_taylor_solver::inner_optimise(', vector, ', ', vector, ...
     ', std::vector<double, std::allocator<double> >&, double&, int)'], '');
  message = with_context(level + 2, message, 'fw_opt/solver.cpp(80)', ...
    ['virtual std::vector<double, std::allocator<double> > fw::Solver::optimise(', vector, ', ', vector, ')'], '');
  message = with_context(level + 3, message, 'kelvane_mex.cpp(2003)', ...
    'void mexFunction(int, mxArray**, int, const mxArray**)', ...
    sprintf('Num points=%d num_eqs=%d (vals of -1 mean not initialised)', num_points, num_equations));
  message = ['kelvane_mex: ', message(1:end - 1)];
end

function text = with_context(level, caught, location, signature, details)
  tabs = repmat(sprintf('\t'), 1, level);
  text = sprintf('%s%s\n%s%s\n%sDetails: %s\n%s\n', tabs, location, tabs, signature, tabs, details, caught);
end
