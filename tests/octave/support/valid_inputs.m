% SPDX-License-Identifier: BSD-3-Clause
% Six inputs that kelvane_mex accepts, as a cell array, for one of the pixel types, with four points: eight equations, three
% times for hybrid types.
function inputs = valid_inputs(type)
  if nargin < 1
    type = 0;
  end
  view = chessboard_view(1);
  corners = [1, 9, 46, 54];
  camera = [view.start{representation_of(type)}, view.intrinsics];
  num_equations = 8 * (1 + 2 * (type < 0));
  inputs = {camera, view.points(:, corners), view.pixels(:, corners), [10, 0, -10000, 0], type, ones(1, num_equations)};
end
