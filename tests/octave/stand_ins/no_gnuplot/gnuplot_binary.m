% SPDX-License-Identifier: BSD-3-Clause
% Stands for Octave's where gnuplot is not installed.
function program = gnuplot_binary()
  program = '/nowhere/gnuplot';
end
