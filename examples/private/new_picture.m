% SPDX-License-Identifier: BSD-3-Clause
% An invisible figure with the fonts and line widths of the pictures.
function f = new_picture()
  f = figure('visible', 'off', 'color', 'w', 'defaultaxesfontname', 'FreeSans', 'defaulttextfontname', 'FreeSans', ...
             'defaultaxesfontsize', 8, 'defaulttextfontsize', 8, 'defaultlinelinewidth', 1.5);
end
