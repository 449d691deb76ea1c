% SPDX-License-Identifier: BSD-3-Clause
% Stands in for the hosts' function: a figure that nobody sees, and what it was told in the global list bar_calls, a row of
% fraction and text for each call.
function handle = waitbar(fraction, varargin)
  global bar_calls
  if ishghandle(varargin{1})
    handle = varargin{1};
    text = varargin{2};
  else
    warning('off', 'Octave:gnuplot-graphics', 'local');
    handle = figure('visible', 'off');
    text = varargin{1};
  end
  bar_calls(end + 1, :) = {fraction, text};
end
