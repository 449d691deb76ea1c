% SPDX-License-Identifier: BSD-3-Clause
% COMPARE_IN_OCTAVE  Time kelvane_mex against refinements in m-code, call for call, and print a Markdown table.
%
%   compare_in_octave(seconds)
%
%   seconds  how long each number of points may take
%
%   Example:  compare_in_octave(3)
%
%   See also gauss_newton, kelvane_mex.
function compare_in_octave(seconds)
  names = {'kelvane', 'gauss_newton.m'};
  calls = {@kelvane_mex, @gauss_newton};
  optim = peer_of_optim();
  fprintf('## In Octave, type 0, ten iterations\n\n');
  if isempty(optim)
    fprintf('The optim package was not found (Debian package octave-optim): without lsqnonlin.\n\n');
  else
    names{end + 1} = 'lsqnonlin';
    calls{end + 1} = optim;
  end
  fprintf('Milliseconds of a call, time of kelvane relative to it, RMS reached in pixels; medians:\n\n');
  fprintf('| N     | call           |     ms |  ratio |  goal |    RMS |\n| ----- | -------------- ');
  fprintf('| -----: | -----: | ----: | -----: |\n');
  for N = [6, 20, 100, 1000, 10000]
    compare_at(N, names, calls, seconds);
  end
  fprintf('\n');
end

function compare_at(N, names, calls, seconds)
  [camera, points, pixels] = random_scene(N);
  times = interleaved_times(cellfun(@(call) @() call(camera, points, pixels), calls, 'UniformOutput', false), seconds);
  goal = containers.Map({6, 20, 100, 10000}, {0.05, 0.05, 0.05, 0.1});
  for k = 1:numel(calls)
    residuals = pixel_residuals(calls{k}(camera, points, pixels)', camera(7:9), points, pixels);
    goal_text = '-';
    if k == 2 && isKey(goal, N)
      goal_text = sprintf('%g', goal(N));
    end
    fprintf('| %-5d | %-14s | %6.3g | %6.3f | %5s | %6.4f |\n', N, names{k}, 1e3 * median(times(:, k)), ...
            median(times(:, 1) ./ times(:, k)), goal_text, norm(residuals) / sqrt(N));
  end
end

% A row for each repetition, which makes every call once in turn, in batches of about 2 ms.
function times = interleaved_times(calls, seconds)
  cellfun(@(call) seconds_per_call(call, 1), calls);  % parse and load
  num_calls = cellfun(@(call) ceil(2e-3 / seconds_per_call(call, 3)), calls);
  times = [];
  start = tic();
  while rows(times) < 5 || toc(start) < seconds
    times(end + 1, :) = cellfun(@(call, n) seconds_per_call(call, n), calls, num2cell(num_calls));
  end
end
