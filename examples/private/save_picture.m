% SPDX-License-Identifier: BSD-3-Clause
% Saves a figure as PNG with [width, height] in pixels and closes it.
function save_picture(f, file, size_px)
  if exist('OCTAVE_VERSION', 'builtin')
    print(f, file, '-dpngcairo', sprintf('-S%d,%d', size_px));
  else
    set(f, 'PaperUnits', 'inches', 'PaperPosition', [0, 0, size_px / 100]);
    print(f, file, '-dpng', '-r100');
  end
  close(f);
  fprintf('%s\n', file);
end
