% SPDX-License-Identifier: BSD-3-Clause
% kelvane_plot: lenses, directions, far coordinates, many points, and what has no picture.

%!function f = hidden_figure()
%!  warning('off', 'Octave:gnuplot-graphics', 'local');
%!  f = figure('visible', 'off');
%!endfunction

%!function info = some_info(intrinsics, varargin)
%!  rand('state', 5); randn('state', 5);
%!  points = 4 * rand(3, 40) - 2;
%!  truth = kelvane_pose([0.1 0.2 -0.1, 0.2 -0.1 -4], 'rotation_vector', 'world_from_camera');
%!  seen = kelvane_project(truth, points, intrinsics);
%!  seen = seen + 1e-3 * max(abs(seen(:))) * randn(size(seen));
%!  seen(:, 7) = seen([2 1 3:end], 7);
%!  truth.centre = truth.centre + [0.1; 0.1; 0.2];
%!  [~, info] = kelvane_refine(truth, points, seen, intrinsics, varargin{:});
%!endfunction

%!test  % through a lens: its pixels, and the pyramid of its rays
%! camera = kelvane_camera('OPENCV_FISHEYE', [300 300 320 240 0.05 -0.01 0 0]);
%! info = some_info(camera, 'Loss', 'tukey');
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info);
%! seen = kelvane_project(info.pose, info.points, camera);
%! assert([get(h(2).predicted, 'xdata'); get(h(2).predicted, 'ydata')], seen, 1e-9);

%!test  % the pixels of BAL's camera have y up
%! info = some_info([500 320 240]);
%! info.intrinsics = kelvane_camera('BAL', [500 0 0]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(axes('parent', f), info, 'after');
%! assert(get(h.axes, 'ydir'), 'normal');

%!test  % directions: the angle from the axis is the distance from the middle, behind the camera as well
%! info = some_info([]);
%! info.observations(:, 1) = [0.6; 0.8; -1] / sqrt(2);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info, 'after');
%! xy = [get(h.observed, 'xdata')(1), get(h.observed, 'ydata')(1)];
%! assert(xy, 135 * [0.6, 0.8], 1e-9);
%! h = kelvane_plot(info, 'scene');
%! assert(ishghandle(h.camera));

%!test  % a pose that the points do not determine has no ellipsoid
%! info = some_info([500 320 240]);
%! info.covariance = Inf(6);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info, 'scene');
%! assert(isempty(h.ellipsoid));

%!test  % an info that lacks something, or has it in another class or size, is told before anything is drawn
%! info = some_info([500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! drawn = kelvane_plot(info);
%! names = {'history', 'pose', 'points', 'observations', 'intrinsics', 'inliers', 'covariance', 'loss_scale', 'rms_before', ...
%!          'rms_after'};
%! clf(f);
%! for name = names
%!   fail('kelvane_plot(rmfield(info, name{1}))', 'needs the info that kelvane_refine returns');
%!   for value = {{}, 'text', [], struct([]), struct('pose', 1), ones(2, 2), @sin}
%!     fail('kelvane_plot(setfield(info, name{1}, value{1}))', 'needs the info that kelvane_refine returns');
%!   end
%! end
%! fail('kelvane_plot(rmfield(info, ''message''))', 'needs the info that kelvane_refine returns');
%! fail('kelvane_plot(setfield(info, ''message'', 5))', 'needs the info that kelvane_refine returns');
%! info.history(1).pose.centre = 1;
%! fail('kelvane_plot(info)', 'needs the info that kelvane_refine returns');
%! assert(isempty(get(f, 'children')));

%!function handles = drawn_in(f, varargin)  % into the only axes of a figure
%!  clf(f);
%!  handles = kelvane_plot(axes('parent', f), varargin{:});
%!endfunction

%!function names = legend_of(f)
%!  names = get(findobj(f, 'type', 'axes', 'tag', 'legend'), 'string');
%!endfunction

%!test  % every picture has a legend of what is in it, and all four have theirs when they are drawn once more
%! info = some_info([500 320 240], 'Loss', 'tukey');
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! drawn_in(f, info, 'after');
%! assert(legend_of(f), {'observed', 'outliers', 'predicted', 'difference'});
%! drawn_in(f, info, 'rms');
%! assert(legend_of(f), {'robust RMS'});
%! drawn_in(f, info, 'scene');
%! assert(legend_of(f), {'points', 'start', 'refined', '3 sigma of centre'});
%! info.covariance(:) = Inf;
%! drawn_in(f, some_info([]), 'before');
%! assert(legend_of(f), {'observed', 'predicted', 'difference'});
%! drawn_in(f, info, 'scene');
%! assert(legend_of(f), {'points', 'start', 'refined'});
%! clf(f);
%! for k = 1:2
%!   kelvane_plot(info);
%!   assert(numel(legend_of(f)), 4);
%!   assert(numel(findobj(f, 'type', 'axes', 'tag', '')), 4);
%! end

%!test  % at UTM coordinates an axis names the round number that its ticks leave out, and no two ticks read alike
%! info = some_info([500 320 240]);
%! far = [432100.25; -5811234.75; 83.5];
%! info.points = info.points + far;
%! info.pose.centre = info.pose.centre + far;
%! info.history(1).pose.centre = info.history(1).pose.centre + far;
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = drawn_in(f, info, 'scene');
%! left_out = [432100; -5811235; 0];
%! shown = [get(h.points, 'xdata'); get(h.points, 'ydata'); get(h.points, 'zdata')];
%! assert(shown, info.points - left_out, 1e-9);
%! limits = [get(h.axes, 'xlim'); get(h.axes, 'ylim'); get(h.axes, 'zlim')];
%! shown = [info.pose.centre, info.points] - left_out;
%! assert(all(all(shown > limits(:, 1) & shown < limits(:, 2))));
%! names = get([findobj(h.axes, 'type', 'text'); get(h.axes, 'xlabel'); get(h.axes, 'ylabel'); get(h.axes, 'zlabel')], 'string');
%! for name = {'X - 432100 (world unit)', 'Y + 5811235 (world unit)', 'Z (world unit)'}
%!   assert(any(strcmp(names, name{1})), name{1});
%! end
%! for axis_name = {'xtick', 'ytick', 'ztick'}
%!   ticks = get(h.axes, axis_name{1});
%!   read = arrayfun(@(tick) sprintf('%.4g', tick), ticks, 'UniformOutput', false);
%!   assert(numel(ticks) >= 3 && numel(ticks) <= 6 && numel(unique(read)) == numel(ticks));
%! end

%!test  % of 100,000 points a picture shows as many as can be told apart, and its legend says so
%! info = some_info([500 320 240], 'Loss', 'tukey');
%! many = repmat(1:40, 1, 2500);
%! info.points = info.points(:, many);
%! info.observations = info.observations(:, many);
%! info.inliers = info.inliers(many);
%! bad = sum(~info.inliers);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = drawn_in(f, info, 'after');
%! assert([numel(get(h.observed, 'xdata')), numel(get(h.outliers, 'xdata')), numel(get(h.predicted, 'xdata'))], [500, 500, 1000]);
%! assert(numel(get(h.residuals, 'xdata')), 3000);
%! names = legend_of(f);
%! assert(names(1:2), {sprintf('observed (500 of %d)', 1e5 - bad), sprintf('outliers (500 of %d)', bad)});
%! h = drawn_in(f, info, 'scene');
%! assert(numel(get(h.points, 'xdata')), 2000);
%! assert(legend_of(f){1}, 'points (2000 of 100000)');

%!test  % few or many decades of RMS: at least two ticks, and none at all
%! info = some_info([500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! for rms = {[1, 0.9], [100, 1e-14, 0], 3, [2e5, 3], [4e-5, 3.9e-5]}
%!   info.history = struct('pose', info.history(1).pose, 'rms', num2cell(rms{1}));
%!   h = drawn_in(f, info, 'rms');
%!   limits = get(h.axes, 'ylim');
%!   assert(limits(1) < min(rms{1}(rms{1} > 0)) && limits(2) > max(rms{1}));
%!   ticks = get(h.axes, 'ytick');
%!   assert(sum(ticks >= limits(1) & ticks <= limits(2)), 5, 4);
%!   assert(numel(get(h.axes, 'yticklabel')), numel(ticks));
%! end
%! info.history = struct('pose', info.history(1).pose, 'rms', num2cell([0, Inf]));
%! drawn_in(f, info, 'rms');

%!test  % an estimate that has found no pose: the reason, and nothing is drawn
%! [~, info] = kelvane_estimate(eye(3), eye(2, 3), [500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! fail('kelvane_plot(info)', 'There is no pose to draw. Not estimated: four points are the least');
%! assert(isempty(get(f, 'children')));
