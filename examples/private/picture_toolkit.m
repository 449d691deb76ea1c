% SPDX-License-Identifier: BSD-3-Clause
% Chooses the graphics that draw without a screen, where the host is Octave, and silences what they say of themselves for as
% long as the result is held.
function quiet = picture_toolkit()
  quiet = [];
  if exist('OCTAVE_VERSION', 'builtin')
    before = warning('off', 'Octave:gnuplot-graphics');
    quiet = onCleanup(@() warning(before));
    graphics_toolkit('gnuplot');
  end
end
