% SPDX-License-Identifier: BSD-3-Clause
% Stands for the function of Octave's package parallel that runs a command on servers: it keeps the command.
function reval(command, ~)
  global revals
  revals{end + 1} = command;
end
