% SPDX-License-Identifier: BSD-3-Clause
% Silences what Octave says of gnuplot, with which it draws where there is no screen, for as long as the result is held. An
% error where that is needed and not there.
function quiet = picture_toolkit()
  quiet = [];
  if is_gnuplot()
    [status, ~] = system(sprintf('"%s" --version 2>&1', gnuplot_binary()));
    if status ~= 0
      error('kelvane:demo', 'Without a screen Octave draws with gnuplot, which is not there: on Debian apt-get install gnuplot-nox.');
    end
    before = warning('off', 'Octave:gnuplot-graphics');
    quiet = onCleanup(@() warning(before));
  end
end
