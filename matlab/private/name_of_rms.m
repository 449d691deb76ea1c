% SPDX-License-Identifier: BSD-3-Clause
% What a picture calls the square root of the mean cost of a refinement's info.
function name = name_of_rms(info)
  name = 'RMS';
  if isfinite(info.loss_scale)
    name = 'robust RMS';
  end
end
