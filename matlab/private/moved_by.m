% SPDX-License-Identifier: BSD-3-Clause
% The state that a motion of motion_between leads to.
function state = moved_by(state, motion)
  state.R = state.R * rotation_of_vector(motion(1:3));
  state.t = state.t + motion(4:6);
end
