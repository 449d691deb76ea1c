% SPDX-License-Identifier: BSD-3-Clause
% The pose of a chessboard view after calls from its start until it moves by less than 1e-10, 50 at most.
function x = refined_until_still(view, type)
  x = view.start{representation_of(type)};
  for call = 1:50
    previous = x;
    x = kelvane_mex([x, view.intrinsics], view.points, view.pixels, [0, 0, -10000, 0], type);
    if norm(x - previous) < 1e-10
      return;
    end
  end
end
