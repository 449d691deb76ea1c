% SPDX-License-Identifier: BSD-3-Clause
% One problem of kelvane_batch from what a file says of a view. pixels are brought to where a camera with K and without the
% radial distortion (two coefficients) sees them; those that such a lens cannot have made are left out, with a warning.
function problem = view_problem(name, id, pose, points, pixels, K, radial, image_size, point_ids)
  f = [K(1, 1); K(2, 2)];
  straight = f .* without_distortion((pixels - K(1:2, 3)) ./ f, radial(1), radial(2)) + K(1:2, 3);
  if ~any(radial)
    straight = pixels;  % to the last bit
  end
  good = all(isfinite(straight), 1);
  if ~all(good)
    warning('kelvane:beyondLens', '%s: %d of %d pixels lie beyond what its lens can see, and are left out.', name, ...
            sum(~good), numel(good));
  end
  problem = struct('name', name, 'id', id, 'start', pose, 'points', points(:, good), 'observations', straight(:, good), ...
                   'intrinsics', K, 'image_size', image_size, 'point_ids', point_ids(good));
end
