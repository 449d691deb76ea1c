% SPDX-License-Identifier: BSD-3-Clause
% An invisible figure with the fonts and line widths of the pictures; font_size is 8 points unless given, of which print makes
% twice as many with gnuplot.
function f = new_picture(font_size)
  if nargin < 1
    font_size = 8;
  end
  if ~is_gnuplot()
    font_size = 2 * font_size;
  end
  f = figure('visible', 'off', 'color', 'w', 'defaultaxesfontname', 'FreeSans', 'defaulttextfontname', 'FreeSans', ...
             'defaultaxesfontsize', font_size, 'defaulttextfontsize', font_size, 'defaultlinelinewidth', 1.5);
end
