% SPDX-License-Identifier: BSD-3-Clause
% The motion, 6 x 1, from one state to another: rotation vector in the camera frame of the first, then the centre's shift.
function motion = motion_between(from, to)
  motion = [vector_of_rotation(from.R' * to.R)'; to.t - from.t];
end
