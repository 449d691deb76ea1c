% SPDX-License-Identifier: BSD-3-Clause
% The options of kelvane_refine, checked: given names and values over the defaults.
function options = refine_options(given)
  defaults = struct('RotationType', [], 'MaxIterations', 100, 'StepTolerance', 1e-9, 'FunctionTolerance', 0, ...
                    'Jacobian', 'analytic', 'Weights', [], 'Loss', 'none', 'LossScale', [], 'NoiseSigma', [], ...
                    'Display', 'off', 'OutputFcn', [], 'PoseForm', '', 'PoseFrame', '', 'OutputForm', '', ...
                    'OutputFrame', '');
  options = parse_options('kelvane_refine', defaults, given);
  options.Jacobian = one_of(options.Jacobian, {'analytic', 'finite-difference'}, 'kelvane:option', 'Jacobian');
  options.Display = one_of(options.Display, {'off', 'iter', 'final'}, 'kelvane:option', 'Display');
  check_number(options, 'MaxIterations', 0);
  check_number(options, 'StepTolerance', 0);
  check_number(options, 'FunctionTolerance', 0);
  check_number(options, 'LossScale', realmin);
  check_number(options, 'NoiseSigma', realmin);
  if options.MaxIterations ~= round(options.MaxIterations)
    error('kelvane:option', 'MaxIterations must be a whole number; this is %g.', options.MaxIterations);
  end
  if ~isempty(options.OutputFcn) && ~isa(options.OutputFcn, 'function_handle')
    error('kelvane:option', 'OutputFcn must be a function handle; this is of class %s.', class(options.OutputFcn));
  end
end

% The options without a default may stay empty.
function check_number(options, name, least)
  value = options.(name);
  if isempty(value) && any(strcmp(name, {'LossScale', 'NoiseSigma'}))
    return;
  end
  if ~isnumeric(value) || ~isscalar(value) || ~isreal(value) || ~(value >= least) || (least > 0 && isinf(value))
    kinds = {'of 0 or more', 'above 0 and finite'};
    error('kelvane:option', '%s must be a number %s.', name, kinds{1 + (least > 0)});
  end
end
