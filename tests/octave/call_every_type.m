% SPDX-License-Identifier: BSD-3-Clause
% Calls of every type, small ones and large ones, whatever comes of them.
function call_every_type()
  for type = [0:3, -3:-1]
    view = chessboard_view(1);
    camera = [view.start{representation_of(type)}, view.intrinsics];
    for num_points = [2, 4, 54]
      try
        x = kelvane_mex(camera, view.points(:, 1:num_points), view.pixels(:, 1:num_points), [1, 0, 0, 0], type); %#ok<NASGU>
      catch
      end
    end
  end
end
