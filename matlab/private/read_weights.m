% SPDX-License-Identifier: BSD-3-Clause
% Weights as one for each equation, in the shape of the observations (d x n); [] stands for all 1.
function weights = read_weights(weights, d, n)
  if isempty(weights)
    weights = ones(d, n);
    return;
  end
  weights = checked_numbers(weights, 'Weights');
  if isvector(weights) && numel(weights) == n
    weights = repmat(weights(:)', d, 1);
  elseif isequal(size(weights), [n, d]) && n ~= d  % three directions come in columns
    weights = weights';
  elseif isvector(weights) && numel(weights) == d * n
    weights = reshape(weights, d, n);
  elseif ~isequal(size(weights), [d, n])
    error('kelvane:size', ['Weights must be one for each of the %d points, or %d x %d, one for each equation; this is ' ...
          '%d x %d.'], n, d, n, size(weights, 1), size(weights, 2));
  end
  if any(weights(:) < 0)
    error('kelvane:negativeWeight', 'Weights must not be negative; the least is %g.', min(weights(:)));
  end
  if sum(any(weights > 0, 1)) < 3
    error('kelvane:tooFewPoints', 'Three points with a weight above 0 are the least that determine a pose.');
  end
end
