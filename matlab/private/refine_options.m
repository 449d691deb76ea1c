% SPDX-License-Identifier: BSD-3-Clause
% The options of kelvane_refine from given names and values, [] where there are none, with full names of losses, forms and
% frames. kelvane_engine checks the numbers. Options from an earlier call, if any, take the place of the defaults.
function options = refine_options(given, options)
  if nargin < 2
    options = struct('MaxIterations', 100, 'StepTolerance', 1e-9, 'FunctionTolerance', 0, 'Weights', [], ...
                     'ObservationCovariance', [], 'Prior', [], 'Fixed', [], 'Loss', [], 'LossScale', [], 'NoiseSigma', [], ...
                     'Display', 'off', 'OutputFcn', [], 'PoseForm', [], 'PoseFrame', [], 'OutputForm', [], 'OutputFrame', []);
  end
  options = with_names(parse_options('kelvane_refine', options, given));
  if ~isempty(options.Loss)
    options.Loss = one_of(options.Loss, {'none', 'huber', 'cauchy', 'tukey'}, 'kelvane:loss', 'loss');
  end
  if ~isempty(options.Fixed)
    options.Fixed = fixed_directions(options.Fixed);
  end
  if isfield(options.Prior, 'pose') && isscalar(options.Prior)
    options.Prior.pose = plain_pose(options.Prior.pose, '');
  end
  if ~isempty(options.OutputFcn) && ~isa(options.OutputFcn, 'function_handle')
    error('kelvane:option', 'OutputFcn must be a function handle; this is of class %s.', class(options.OutputFcn));
  end
end

% A direction [w; dt] in each column, from words or from such columns.
function directions = fixed_directions(given)
  directions = given;
  if ischar(given) || isa(given, 'string')
    given = cellstr(given);
  end
  if ~iscell(given)
    return;
  end
  axes = eye(6);
  words = {'rotation', 'gravity', 'centre', 'height'};
  which = {1:3, 1:2, 4:6, 6};
  for k = 1:numel(given)
    word = one_of(given{k}, words, 'kelvane:option', 'kind of Fixed');
    given{k} = axes(:, which{strcmp(word, words)});
  end
  directions = [given{:}];
end
