% SPDX-License-Identifier: BSD-3-Clause
% True where Octave draws axes with gnuplot, which places legends and the names of three axes less well.
function yes = is_gnuplot(target)
  yes = exist('OCTAVE_VERSION', 'builtin') ~= 0 && strcmp(graphics_toolkit(ancestor(target, 'figure')), 'gnuplot');
end
