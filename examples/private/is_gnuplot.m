% SPDX-License-Identifier: BSD-3-Clause
% Whether new figures are drawn with gnuplot, as in an Octave without a screen.
function yes = is_gnuplot()
  yes = exist('OCTAVE_VERSION', 'builtin') ~= 0 && strcmp(graphics_toolkit(), 'gnuplot');
end
