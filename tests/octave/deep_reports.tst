% SPDX-License-Identifier: BSD-3-Clause
% Errors from inside a refinement: each caller's block above the caught report, one tab deeper.

%!function text = bearing_report(K)
%!  text = deep_report(4, 12, 0, sprintf(['kelvane_mex.cpp(1662)\n' ...
%!    'virtual std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>&) const\n' ...
%!    'Details: For bearing vectors, expected k to be identity, instead got %s\n'], K));
%!endfunction

%!function inputs = bearing_inputs(type, intrinsics, flag)
%!  if nargin < 3
%!    flag = 0;
%!  end
%!  rotation = {[0.1, 0.2, 0.3], [1, 0, 0, 0.1], [0.1, 0, 0, 1]};
%!  camera = [rotation{type - 9}, 0, 0, -3, intrinsics];
%!  inputs = {camera, [0, 1, 0, 1; 0, 0, 1, 1; 0, 0.1, 0.2, 0], ones(3, 4), [1, 0, 0, flag], type};
%!endfunction

%!test  % bearing types with intrinsics that are not the identity
%! for type = 10:12
%!   for flag = 0:1  % in closed form and by finite differences
%!     assert(caught(bearing_inputs(type, [500, 320.5, 1e-7], flag)), ...
%!            bearing_report(sprintf('3\t3\n500\t0\t320.5\t\n0\t500\t1e-07\t\n0\t0\t1\t\n')));
%!   end
%! end

%!test  % each of the three intrinsics is checked, to 0.0001
%! assert(caught(bearing_inputs(10, [1.00011, 0, 0])), ...
%!        bearing_report(sprintf('3\t3\n1.00011\t0\t0\t\n0\t1.00011\t0\t\n0\t0\t1\t\n')));
%! assert(caught(bearing_inputs(10, [1, -0.00011, 0])), ...
%!        bearing_report(sprintf('3\t3\n1\t0\t-0.00011\t\n0\t1\t0\t\n0\t0\t1\t\n')));
%! assert(caught(bearing_inputs(10, [1, 0, NaN])), ...
%!        bearing_report(sprintf('3\t3\n1\t0\t0\t\n0\t1\tnan\t\n0\t0\t1\t\n')));
%! x = kelvane_mex(bearing_inputs(10, [1.00009, -0.00009, 0.00009]){:});
%! assert(size(x), [1, 6]);

%!test  % fewer equations than unknowns: OpenCV's own text is wrapped
%! for num_points = 0:2
%!   inputs = valid_inputs();
%!   inputs = {inputs{1}, inputs{2}(:, 1:num_points), inputs{3}(:, 1:num_points)};
%!   message = caught(inputs);
%!   frame = deep_report(num_points, 2 * num_points, -1, '@');
%!   library = strsplit(frame, '@');
%!   middle = message(numel(library{1}) + 1:end - numel(library{2}));
%!   assert(message, [library{1}, middle, library{2}]);
%!   assert(~isempty(regexp(middle, ['^OpenCV\([\d.]+\) \S+/lapack\.cpp:\d+: error: \(-5:Bad argument\) ', ...
%!     'The function can not solve under-determined linear systems in function ''solve''\n$'], 'once')));
%! end

