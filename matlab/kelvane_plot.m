% KELVANE_PLOT  Draw a refinement: residuals before and after, RMS by iteration, and the camera in the scene.
%
%   kelvane_plot(info)
%   kelvane_plot(info, what)
%   kelvane_plot(axes, info, what)
%   handles = kelvane_plot(...)
%
%   info is the second output of kelvane_refine or kelvane_estimate, or the info of a result of kelvane_batch. what is one of
%     'before'  where the points were observed and where the start sees them, in the image
%     'after'   the same for the refined pose
%     'rms'     RMS against the iteration
%     'scene'   points, the camera before and after, and the ellipsoid of three standard deviations of its centre, enlarged
%               by the power of ten that the title tells. Axes far from zero name a round number, which their ticks and all
%               that is drawn leave out, as UTM coordinates need it.
%   Without it all four are drawn, side by side in the current figure. The axes are the current ones unless given; they are
%   cleared unless held.
%
%   The legend tells where only some of many are shown: 500 inliers and 500 outliers in an image, 2000 points of a scene,
%   spread evenly. Where an estimate found no pose there is nothing to draw, and an error tells why.
%
%   Pixels are drawn with v down. Directions are drawn around the optical axis: their angle from it, in degrees, is the
%   distance from the middle, so that points behind the camera have their place beyond the circle at 90 degrees. Inliers
%   and outliers (info.inliers) have colours of their own. The scene is in world units.
%
%   handles is a struct with the fields axes and, where they were drawn, observed, predicted, residuals, outliers, rms,
%   points, start, camera and ellipsoid; for all four, a 1 x 4 struct array.
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> pixels = kelvane_project([0 0 0, 0.1 -0.2 -4], points, [500 320 240], 'PoseFrame', 'world_from_camera');
%     >> pixels(1, :) = pixels(1, :) + [0.3 -0.2 0.4 -0.1 0.2 -0.5];
%     >> start = [0.02 -0.03 0.01, 0.2 -0.1 -3.8];
%     >> [~, info] = kelvane_refine(start, points, pixels, [500 320 240], 'PoseFrame', 'world_from_camera');
%     >> kelvane_plot(info)         % doctest: +SKIP
%     >> kelvane_plot(info, 'rms')  % doctest: +SKIP
%     >> [info.history.rms]         % is what this draws
%     ans =
%        8.0421   0.7061   0.2469   0.2469   0.2469   0.2469
%
%
%   See also kelvane_refine, kelvane_project, kelvane_batch, kelvane_demo.

% SPDX-License-Identifier: BSD-3-Clause
% Pictures of one refinement.
function handles = kelvane_plot(varargin)
  given = varargin;
  target = [];
  if numel(given) > 1 && isscalar(given{1}) && ~isstruct(given{1}) && ishghandle(given{1})
    target = given{1};
    given(1) = [];
  end
  if isempty(given) || numel(given) > 2 || ~is_info(given{1})
    error('kelvane:inputs', 'kelvane_plot needs the info that kelvane_refine returns, and may have axes before and what behind.');
  end
  info = given{1};
  if isempty(info.history)
    error('kelvane:noPose', 'There is no pose to draw. %s', info.message);
  end
  kinds = {'before', 'after', 'rms', 'scene'};
  if numel(given) == 2
    kinds = {one_of(given{2}, kinds, 'kelvane:plot', 'kind of picture')};
  elseif ~isempty(target)
    error('kelvane:inputs', 'One axes has place for one picture: say which, ''before'', ''after'', ''rms'' or ''scene''.');
  end
  all_fields = {'axes', 'observed', 'predicted', 'residuals', 'outliers', 'rms', 'points', 'start', 'camera', 'ellipsoid'};
  for k = numel(kinds):-1:1
    if numel(kinds) > 1
      target = subplot(2, 2, k);  % with room for a legend and the title below it
      set(target, 'position', [0.13 + 0.448 * (k == 2 || k == 4), 0.11 + 0.51 * (k < 3), 0.327, 0.303]);
    elseif isempty(target)
      target = gca();
    end
    drawn = draw_in(target, info, kinds{k}, numel(kinds) > 1);
    for name = all_fields
      result(k).(name{1}) = drawn_or_empty(drawn, name{1});
    end
  end
  if nargout > 0
    handles = result;
  end
end

function handle = drawn_or_empty(drawn, name)
  handle = [];
  if isfield(drawn, name)
    handle = drawn.(name);
  end
end

% Into axes as newplot leaves them, held while there is more to draw.
function drawn = draw_in(target, info, kind, is_one_of_four)
  target = newplot(target);
  if is_one_of_four
    set(target, 'fontsize', 7 - 2 * is_gnuplot(target));  % they share the place of one, and gnuplot's print doubles it
  end
  if ~ishold(target)
    hold(target, 'on');
    letting_go = onCleanup(@() let_go(target)); %#ok<NASGU>
  end
  switch kind
    case 'before'
      drawn = plot_residuals(target, info, info.history(1).pose, info.rms_before, kind);
    case 'after'
      drawn = plot_residuals(target, info, info.pose, info.rms_after, kind);
    case 'rms'
      drawn = plot_rms(target, info);
    case 'scene'
      drawn = plot_scene(target, info);
  end
  drawn.axes = target;
end

% Also where drawing has failed; the axes may be gone by then.
function let_go(target)
  if ishghandle(target)
    hold(target, 'off');
  end
end

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

%!test  % the curves hold the numbers of info
%! info = some_info([500 320 240], 'Loss', 'tukey');
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info);
%! assert(size(h), [1, 4]);
%! assert(get(h(3).rms, 'ydata'), [info.history.rms]);
%! seen = kelvane_project(info.pose, info.points, info.intrinsics);
%! assert([get(h(2).predicted, 'xdata'); get(h(2).predicted, 'ydata')], seen, 1e-9);
%! before = kelvane_project(info.history(1).pose, info.points, info.intrinsics);
%! assert([get(h(1).predicted, 'xdata'); get(h(1).predicted, 'ydata')], before, 1e-9);
%! assert([get(h(2).observed, 'xdata'); get(h(2).observed, 'ydata')], info.observations(:, info.inliers));
%! assert([get(h(2).outliers, 'xdata'); get(h(2).outliers, 'ydata')], info.observations(:, ~info.inliers));
%! assert(any(~info.inliers));
%! lines = [get(h(2).residuals, 'xdata'); get(h(2).residuals, 'ydata')];
%! assert(lines(:, 1:3:end) - lines(:, 2:3:end), info.residuals, 1e-9);
%! assert(get(h(1).axes, 'ydir'), 'reverse');
%! assert([get(h(4).points, 'xdata'); get(h(4).points, 'ydata'); get(h(4).points, 'zdata')], info.points);

%!test  % the ellipsoid is that of the covariance, times the power of ten that the title tells
%! info = some_info([500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info, 'scene');
%! xyz = [get(h.ellipsoid, 'xdata'); get(h.ellipsoid, 'ydata'); get(h.ellipsoid, 'zdata')];
%! xyz = xyz(:, all(isfinite(xyz)));
%! zoom = sscanf(regexp(get(get(h.axes, 'title'), 'string'), '[\d.e+]+ times', 'match'){1}, '%f');
%! off = (xyz - info.pose.centre) / zoom;
%! assert(sqrt(sum(off .* (info.covariance(4:6, 4:6) \ off))), 3 * ones(1, size(off, 2)), 1e-9);

%!test  % shapes of the scene are true: the box is a cube, its sides are of the same length, and all of the scene is in it
%! info = some_info([500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! h = kelvane_plot(info, 'scene');
%! assert({get(h.axes, 'plotboxaspectratio'), get(h.axes, 'plotboxaspectratiomode')}, {[1, 1, 1], 'manual'});
%! limits = [get(h.axes, 'xlim'); get(h.axes, 'ylim'); get(h.axes, 'zlim')];
%! assert(diff(limits, 1, 2), max(diff(limits, 1, 2)) * ones(3, 1), 1e-12);
%! shown = [info.points, info.pose.centre, info.history(1).pose.centre];
%! assert(all(min(shown, [], 2) > limits(:, 1) & max(shown, [], 2) < limits(:, 2)));

%!test  % given axes are drawn into, and held ones are kept
%! info = some_info([500 320 240]);
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! left = subplot(1, 2, 1);
%! right = subplot(1, 2, 2);
%! own = line(left, 1:3, 1:3);
%! hold(left, 'on');
%! h = kelvane_plot(left, info, 'after');
%! assert(h.axes, left);
%! assert(ishghandle(own) && ishold(left));
%! own = line(right, 1:3, 1:3);
%! kelvane_plot(right, info, 'rms');
%! assert(~ishghandle(own) && ~ishold(right));

%!test  % what is seen at one place has an image around it
%! [~, info] = kelvane_refine([0 0 0, 0 0 -4], [0 0 0; 0 0 0; 0 1 2], [0 0 0; 0 0 0; 1 1 1], [], 'PoseFrame', 'world_from_camera');
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! assert(ishghandle(kelvane_plot(info, 'after').observed));

%!test  % axes are not held after a failure
%! info = some_info([500 320 240]);
%! info.covariance(:) = realmax;
%! f = hidden_figure();
%! closing = onCleanup(@() close(f));
%! fail('kelvane_plot(info, ''scene'')', 'Inf or NaN');
%! assert(~ishold(gca()));

%!error <needs the info that kelvane_refine returns> kelvane_plot(3)
%!error <needs the info that kelvane_refine returns> kelvane_plot()
%!error <needs the info that kelvane_refine returns> kelvane_plot(some_info([500 320 240]), 'rms', 'after')
%!error <'late' is not a kind of picture. There are 'before', > kelvane_plot(some_info([500 320 240]), 'late')
%!error <'aftre' is not a kind of picture. Did you mean 'after'> kelvane_plot(some_info([500 320 240]), 'aftre')
%!error <One axes has place for one picture> kelvane_plot(0, some_info([500 320 240]))

%!demo
%! % residuals before and after, RMS by iteration, and the scene
%! k = 1:200;
%! points = [432100; 5811235; 80] + 3 * [sin(7 * k); cos(11 * k); sin(13 * k + 1)];  % in metres, UTM
%! truth = kelvane_pose({[1 0 0; 0 0 1; 0 -1 0], [432101; 5811225; 80]}, 'rotation_centre', 'world_from_camera');
%! pixels = kelvane_project(truth, points, [500 320 240]) + 0.5 * [sin(17 * k); cos(19 * k)];
%! pixels(:, 5:20:200) = pixels(:, [25:20:200, 5]);
%! truth.centre = truth.centre + [0.5; -0.3; 0.2];
%! [~, info] = kelvane_refine(truth, points, pixels, [500 320 240], 'Loss', 'tukey');
%! kelvane_plot(info)
