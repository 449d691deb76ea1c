% SPDX-License-Identifier: BSD-3-Clause
% Six inputs that kelvane_mex accepts, as a cell array, for one of the rotation types 0 to 3; one representation and four
% points, so eight equations.
function inputs = valid_inputs(type)
  if nargin < 1
    type = 0;
  end
  view = chessboard_view(1);
  corners = [1, 9, 46, 54];
  camera = [view.start{representation_of(type)}, view.intrinsics];
  inputs = {camera, view.points(:, corners), view.pixels(:, corners), [10, 0, -10000, 0], type, ones(1, 8)};
end
