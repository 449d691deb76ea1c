% SPDX-License-Identifier: BSD-3-Clause
% The options of kelvane_estimate from given names and values, [] where there are none, with full names of forms and frames.
% kelvane_engine checks the numbers.
function options = estimate_options(given)
  options = struct('MaxReprojectionError', [], 'MaxAngle', [], 'Confidence', 0.9999, 'MaxNumTrials', 100000, 'Seed', 0, ...
                   'Display', 'off', 'OutputForm', [], 'OutputFrame', []);
  options = with_names(parse_options('kelvane_estimate', options, given));
end
