% SPDX-License-Identifier: BSD-3-Clause
% The search vector x after one iteration of kelvane_mex towards a target (2 x n, or 3 x n for a bearing type) with weights,
% one for each equation in the order of the module.
function x = stepped(type, x, intrinsics, points, target, weights, finite_difference)
  if type.bearing
    [points, target, weights] = packed_bearings(points, target, weights);
  elseif numel(weights) < numel(x)
    [points, target, weights] = with_one_more(points, target, weights);
  end
  inputs = {[x, intrinsics], points, target, criteria_of_one_iteration(finite_difference), type.number};
  if any(weights ~= 1)
    inputs{6} = weights;
  end
  x = kelvane_mex(inputs{:});
end

% Type 0 makes three iterations in a call, but no decrease reaches this min_y_step: the second one ends the call, and the
% first is kept.
function criteria = criteria_of_one_iteration(finite_difference)
  criteria = [0, 0, 1e38, finite_difference];
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

% Three points give six equations, and the module refuses fewer than a search vector has elements: the first point once
% more, without weight.
function [points, target, weights] = with_one_more(points, target, weights)
  points = points(:, [1:end, 1]);
  target = target(:, [1:end, 1]);
  weights(end + 1:end + 2) = 0;
end
