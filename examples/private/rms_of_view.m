% SPDX-License-Identifier: BSD-3-Clause
% Root mean square distance, in pixels, between the observed and the predicted corners of a view.
function rms = rms_of_view(view, type, x)
  difference = predicted_pixels(view, type, x) - view.pixels;
  rms = sqrt(sum(difference(:).^2) / size(difference, 2));
end
