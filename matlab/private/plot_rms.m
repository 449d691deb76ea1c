% SPDX-License-Identifier: BSD-3-Clause
% Draws the RMS of a refinement's info against the iteration. Held axes keep their scale, so the scale is set here.
function drawn = plot_rms(target, info)
  rms = [info.history.rms];
  rms(rms == 0) = NaN;  % has no logarithm
  last = numel(rms) - 1;
  drawn.rms = plot(target, 0:last, rms, '-o', 'color', [0, 0.45, 0.70], 'markersize', 5);
  set(target, 'yscale', 'log', 'box', 'on', 'ygrid', 'on', 'yminorgrid', 'off', 'gridcolor', [0.5, 0.5, 0.5], ...
      'xlim', [0, max(1, last)], 'xtick', 0:ceil((last + 1) / 8):last);
  set_decades(target, log10(rms(isfinite(rms))));
  xlabel(target, 'iteration');
  units = {'rad', 'pixels'};
  ylabel(target, sprintf('%s (%s)', name_of_rms(info), units{1 + ~isempty(info.intrinsics)}));
  add_legend(target, {drawn.rms, name_of_rms(info), 1, 1});
end

% Limits around the exponents, and ticks 1, 2, 5, 10, ... or, over many decades, whole ones.
function set_decades(target, exponents)
  if isempty(exponents)
    return;
  end
  low = min(exponents) - 0.2;
  high = max(exponents) + 0.2;
  decades = floor(low):ceil((high - low) / 8):ceil(high);
  labels = arrayfun(@(exponent) sprintf('10^{%d}', exponent), decades, 'UniformOutput', false);
  ticks = 10.^decades;
  if high - low < 3
    ticks = reshape([1; 2; 5] * ticks, 1, []);
    labels = arrayfun(@(tick) sprintf('%g', tick), ticks, 'UniformOutput', false);
  end
  set(target, 'ylim', 10.^[low, high], 'ytick', ticks, 'yticklabel', labels);
end
