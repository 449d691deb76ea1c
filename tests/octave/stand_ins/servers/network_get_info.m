% SPDX-License-Identifier: BSD-3-Clause
% Stands for the function of Octave's package parallel that tells of connections: of this process and of a server with two
% processors.
function info = network_get_info(~)
  info = struct('local_machine', {true, false}, 'nproc', {1, 2}, 'nlocaljobs', 0);
end
