% SPDX-License-Identifier: BSD-3-Clause
% The Jacobian of kelvane_mex at a search vector x, one row for each equation, from its steps: type is an element of
% kelvane_types(), K 3 x 3 or [] for bearings, seen what x predicts of the points.
function J = recovered_jacobian(type, K, points, x, seen)
  intrinsics = [1, 0, 0];
  push = 1;  % of the target, so that steps are about 1: small ones would lose their digits
  if ~isempty(K)
    intrinsics = K([1, 7, 8]);
    push = abs(K(1, 1));
  end
  J = zeros(0, numel(x));
  for block = 1:type.blocks  % those of a hybrid type are told apart by giving weight to one at a time
    weights = kron(double((1:type.blocks) == block), ones(1, numel(seen)));
    inverse = zeros(numel(x), numel(seen));
    for k = 1:numel(seen)
      target = seen;
      target(k) = target(k) + push;
      inverse(:, k) = (stepped(type, x, intrinsics, points, target, weights) - x)' / push;
    end
    J = [J; pinv(inverse, 1e-9 * norm(inverse))]; %#ok<AGROW>
  end
end

% The search vector after one iteration towards a target, 2 x n, or 3 x n for a bearing type, with weights, one for each
% equation in the order of the module.
function x = stepped(type, x, intrinsics, points, target, weights)
  if type.bearing
    [points, target, weights] = packed_bearings(points, target, weights);
  end
  % Type 0 makes three iterations in a call, but no decrease reaches this min_y_step: the second one ends the call, and the
  % first is kept.
  one_iteration = [0, 0, 1e38, 0];
  x = kelvane_mex([x, intrinsics], points, target, one_iteration, type.number, weights);
end

% The module reads the target of bearings in pairs, the first two rows of what it is given: component k of point i must be
% at place 3 i + k of that list. Further points without weight make the pairs enough for all components.
function [points, target, weights] = packed_bearings(points, target, weights)
  n = size(points, 2);
  num_columns = ceil(1.5 * n);
  pairs = zeros(2, num_columns);
  pairs(1:3 * n) = target(:);
  points(:, n + 1:num_columns) = 0;
  target = [pairs; zeros(1, num_columns)];
  weights(3 * n + 1:3 * num_columns) = 0;
end
