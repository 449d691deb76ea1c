% SPDX-License-Identifier: BSD-3-Clause
% The pose struct, in the user's world, of a state of a scaled problem.
function pose = pose_of_state(problem, state)
  pose = struct('rotation', problem.world_turn' * state.R, ...
                'centre', problem.world_turn' * state.t * problem.unit + problem.origin, ...
                'form', 'pose', 'frame', 'world_from_camera');
end
