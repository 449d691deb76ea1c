% SPDX-License-Identifier: BSD-3-Clause
% Draws the RMS of a refinement's info against the iteration. Held axes keep their scale, so the scale is set here.
function drawn = plot_rms(target, info)
  rms = [info.history.rms];
  drawn.rms = plot(target, 0:numel(rms) - 1, rms, '-o', 'color', [0, 0.45, 0.70], 'markersize', 5);
  set(target, 'yscale', 'log', 'box', 'on', 'ygrid', 'on', 'yminorgrid', 'off', 'xlim', [0, max(1, numel(rms) - 1)]);
  xlabel(target, 'iteration');
  units = {'rad', 'pixels'};
  ylabel(target, sprintf('%s (%s)', name_of_rms(info), units{1 + ~isempty(info.intrinsics)}));
end
