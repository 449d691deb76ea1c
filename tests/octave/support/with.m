% SPDX-License-Identifier: BSD-3-Clause
% The first six inputs of valid_inputs() with some replaced: with(number, value, number, value, ...).
function inputs = with(varargin)
  inputs = valid_inputs();
  for i = 1:2:numel(varargin)
    inputs{varargin{i}} = varargin{i + 1};
  end
end
