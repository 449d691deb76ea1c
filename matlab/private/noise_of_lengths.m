% SPDX-License-Identifier: BSD-3-Clause
% The noise of one coordinate that explains the median length of the residuals, unmoved by a minority of outliers. Lengths
% of normal residuals in two coordinates have the median sqrt(2 * log(2)) times the noise.
function sigma = noise_of_lengths(s)
  sigma = median(s) / sqrt(2 * log(2));
end
