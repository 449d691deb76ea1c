% SPDX-License-Identifier: BSD-3-Clause
% What a camera of read_intrinsics sees of points in its frame: 2 x n pixels or 3 x n unit bearings.
function seen = predicted(camera, p)
  if camera.bearing
    seen = p ./ sqrt(sum(p.^2, 1));
  else
    seen = camera.A * [p(1, :) ./ p(3, :); p(2, :) ./ p(3, :)] + camera.c;
  end
end
