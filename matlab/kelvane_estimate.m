% KELVANE_ESTIMATE  Find a camera pose without a start, from points and observations many of which may be wrong.
%
%   pose = kelvane_estimate(points, observations, intrinsics)
%   pose = kelvane_estimate(points, observations, intrinsics, name, value, ...)
%   [pose, info] = kelvane_estimate(...)
%
%   Tries poses of three points each, drawn by lot, until with the wanted confidence one of them had right observations
%   only; takes the pose with which most observations agree, and refines it by those.
%
%   Inputs: finite real numbers of any class; an observation may be NaN.
%     points        3 x N or N x 3: world points, N of 4 or more; 3 x 3 lie as the observations do, in columns or in rows
%     observations  2 x N or N x 2: pixels (u, v); or 3 x N or N x 3: directions to the points in the camera frame, of any
%                   length but zero, which may point anywhere; 3 x 3 are columns. Of the same point as far as they are
%                   right. A point with a NaN in its observation was not seen and is left out.
%     intrinsics    as in kelvane_refine: of pixels a camera, with its lens, [f cx cy], [fx fy cx cy] or K; of directions []
%
%   Options, by name in any capitals, or as a struct:
%     'MaxReprojectionError'  an observation further than this from where the pose sees its point is wrong, in pixels; by
%                             default 8 while it searches, then as far as the noise that it finds reaches
%     'MaxAngle'              the same of directions, in radians; by default one degree while it searches
%     'Confidence'            probability, above 0 and below 1, that some trial had right observations only; default 0.9999
%     'MaxNumTrials'          how many triples of points to try at most; default 100000
%     'Seed'                  a whole number that says in which order; default 0. The same seed gives the same bits, on any
%                             number of processors.
%     'OutputForm'            form of pose, see kelvane_pose; by default its struct
%     'OutputFrame'           'camera_from_world' or 'world_from_camera', needed where OutputForm implies none and is not
%                             to be the latter
%     'Display'               'off' (default), 'iter' or 'final'
%
%   Outputs:
%     pose  the pose, to be used where info.exitflag is 0 or more
%     info  struct with the fields of kelvane_refine's info, of the refinement in the end. What is special:
%       exitflag       above 0: found. Otherwise: 0 found, but the refinement came to its last iteration; -4 there are fewer
%                      than four points, or all in one place or on a line; -6 ambiguous: another pose is as likely, see
%                      alternative, or may be, as the message says; -8 no consensus: no more points agree than chance
%                      lets. -2, -3 and -5 are those of kelvane_refine.
%       message        the same in words
%       inliers        1 x N, true for the observations that agree with the pose: these are what was refined
%       num_inliers    how many they are
%       num_left_out   all other points
%       residuals      of all points that were seen
%       rms_before     and history: of the last refinement, after the last choice of inliers; rms_after of the inliers
%       num_trials     triples that were tried
%       log10_chance   of as many that agree among observations that are all wrong, at most; -8 where it is above -3
%       alternative    another pose (struct of kelvane_pose) and its rms, where one is as likely: the other tilt of a flat
%                      target, or that of other observations
%
%   kelvane_refine and kelvane_batch do this for themselves where they are given no start.
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5 -0.7 0.2 0.8; -1 -1 1 1 0 0.3 0.4 -0.6 0.1; 0 0.2 0 0.4 1 -0.5 0.7 -0.2 0.3];
%     >> K = [500 0 320; 0 510 240; 0 0 1];
%     >> pixels = kelvane_project([0 0 0, 0.1 -0.2 -4], points, K, 'PoseFrame', 'world_from_camera');
%     >> pixels(:, [2 6]) = pixels(:, [6 2]);  % two points mistaken for each other
%     >> [pose, info] = kelvane_estimate(points, pixels, K);
%     >> fprintf('centre (%.6f, %.6f, %.6f)\n', pose.centre)
%     centre (0.100000, -0.200000, -4.000000)
%     >> wrong = find(~info.inliers)
%     wrong =
%        2   6
%
%
%   See also kelvane_refine, kelvane_batch, kelvane_pose, kelvane_camera, kelvane_project.

% SPDX-License-Identifier: BSD-3-Clause
% The door to the search of kelvane_engine.
function [pose, info] = kelvane_estimate(points, observations, intrinsics, varargin)
  if nargin < 3
    error('kelvane:inputs', 'kelvane_estimate needs points, observations and intrinsics ([] for bearing vectors).');
  end
  row = estimated(points, observations, intrinsics, estimate_options(varargin));
  pose = row.pose;
  info = row.info;
end

%!function [points, K, pixels, truth] = scene()
%!  k = 1:60;
%!  points = [sin(7 * k); cos(11 * k); sin(13 * k + 1)];
%!  K = [500 3 320; 0 510 240; 0 0 1];
%!  truth = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%!  pixels = kelvane_project(truth, points, K) + [sin(17 * k); cos(19 * k)];
%!endfunction

%!function d = num_sigma(info, truth)
%!  S = logm(info.pose.rotation' * truth.rotation);
%!  e = [S(3, 2); S(1, 3); S(2, 1); truth.centre - info.pose.centre];
%!  d = sqrt(e' * (info.covariance \ e));
%!endfunction

%!test  % two of three observations of other points; the pose is that of the others, whatever the layout and the class
%! [points, K, pixels, truth] = scene();
%! pixels(:, 1:40) = pixels(:, [2:40, 1]);
%! [pose, info] = kelvane_estimate(points, pixels, K);
%! assert(info.exitflag > 0);
%! assert(num_sigma(info, truth) < 4.7);
%! assert(pose, info.pose);
%! assert(all(info.inliers(41:60)) && sum(info.inliers(1:40)) <= 2);
%! assert([info.num_inliers, info.num_left_out], [sum(info.inliers), sum(~info.inliers)]);
%! assert(info.residuals, pixels - kelvane_project(pose, points, K), 1e-9);
%! assert(info.log10_chance < -3 && info.num_trials >= 100);
%! for layout = {points', pixels; points, pixels'; sparse(points), pixels}'
%!   assert(isequaln(kelvane_estimate(layout{1}, layout{2}, K), pose));
%! end
%! exact = kelvane_refine(pose, points(:, info.inliers), pixels(:, info.inliers), K);
%! assert({exact.rotation, exact.centre}, {pose.rotation, pose.centre}, 1e-8);

%!test  % directions all round, and a lens
%! [points, ~, ~, truth] = scene();
%! points = 6 * points;
%! b = kelvane_project(truth, points, []) .* (1 + mod(1:60, 3));
%! b(:, 1:25) = b(:, [2:25, 1]);
%! [pose, info] = kelvane_estimate(points, b, []);
%! assert({pose.rotation, pose.centre}, {truth.rotation, truth.centre}, 1e-9);
%! assert(find(~info.inliers), 1:25);
%! [points, K, ~, truth] = scene();
%! camera = kelvane_camera(struct('model', 'OPENCV', 'parameters', [500 510 320 240 -0.2 0.05 0.001 -0.001]));
%! pixels = kelvane_project(truth, points, camera);
%! pixels(:, 1:25) = pixels(:, [2:25, 1]);
%! [pose, info] = kelvane_estimate(points, pixels, camera);
%! assert({pose.rotation, pose.centre}, {truth.rotation, truth.centre}, 1e-8);
%! assert(info.intrinsics.model, 'OPENCV');

%!test  % what was not seen; a limit in pixels or radians; other forms
%! [points, K, pixels, truth] = scene();
%! pixels(2, 5) = NaN;
%! pixels(1, 7) = pixels(1, 7) + 3.5;
%! [pose, info] = kelvane_estimate(points, pixels, K, 'MaxReprojectionError', 2.5, 'OutputForm', 'opencv');
%! assert(find(~info.inliers), [5 7]);
%! assert(isnan(info.residuals(:, 5)) & ~isnan(info.residuals(:, 7)), true(2, 1));
%! assert(pose{2}, -info.pose.rotation' * info.pose.centre, 1e-12);
%! [~, info] = kelvane_estimate(points, pixels, K, 'maxreprojectionerror', 10);
%! assert(find(~info.inliers), 5);
%! b = kelvane_project(truth, points, []) + 1e-3 * [sin(1:60); cos(1:60); zeros(1, 60)];
%! [~, loose] = kelvane_estimate(points, b, [], 'MaxAngle', 0.01, 'MaxReprojectionError', 1e-9);
%! [~, tight] = kelvane_estimate(points, b, [], 'MaxAngle', 0.0008);
%! assert(loose.num_inliers, 60);
%! assert(tight.num_inliers < 60);

%!test  % one seed, the same bits; another one, the same pose
%! [points, K, pixels] = scene();
%! pixels(:, 1:40) = pixels(:, [2:40, 1]);
%! [~, first] = kelvane_estimate(points, pixels, K, 'Seed', 5);
%! [~, second] = kelvane_estimate(points, pixels, K, struct('seed', 5));
%! assert(isequaln(first, second));
%! [~, other] = kelvane_estimate(points, pixels, K, 'Seed', 6);
%! assert(other.pose.centre, first.pose.centre, 1e-7);
%! [~, few] = kelvane_estimate(points, pixels, K, 'MaxNumTrials', 40);
%! assert(few.num_trials, 40);
%! [~, clean] = kelvane_estimate(points(:, 41:60), pixels(:, 41:60), K);
%! assert(clean.num_trials, 32);  % a whole block, though fewer would do
%! [~, few] = kelvane_estimate(points, pixels, K, 'Confidence', 0.5);
%! assert(few.num_trials < first.num_trials);

%!test  % doubt: a negative flag, and what was found in words
%! [points, K, pixels] = scene();
%! [pose, info] = kelvane_estimate(points(:, 1:3), pixels(:, 1:3), K);
%! assert(info.exitflag, -4);
%! assert(info.message, 'Not estimated: four points are the least, three for a pose and one that agrees; 3 have an observation.');
%! assert(all(isnan(pose.rotation(:))) && all(isnan(pose.centre)) && all(isinf(info.covariance(:))));
%! for n = 0:2
%!   [~, info] = kelvane_estimate(points(:, 1:n), pixels(:, 1:n), K);
%!   assert([info.exitflag, size(info.residuals)], [-4, 2, n]);
%! end
%! [~, info] = kelvane_estimate(points, NaN(2, 60), K);
%! assert(info.exitflag, -4);
%! [~, info] = kelvane_estimate(repmat([1; 2; 3], 1, 60), pixels, K);
%! assert({info.exitflag, info.message}, {-4, 'Not estimated: all points lie in one place.'});
%! [~, info] = kelvane_estimate([1; 2; 3] + [1; -1; 2] * (1:60), pixels, K);
%! assert({info.exitflag, info.message}, {-4, 'Not estimated: all points lie on a line, and a turn about it changes nothing.'});
%! [~, info] = kelvane_estimate(points, pixels(:, mod(7 * (1:60), 60) + 1), K, 'MaxNumTrials', 2000);
%! assert(info.exitflag, -8);
%! assert(~isempty(regexp(info.message, '^No consensus: \d+ of 60 observations agree')));

%!test  % a flat target from afar: both poses
%! [u, v] = meshgrid(-1:0.5:1);
%! points = [u(:)'; v(:)'; zeros(1, 25)];
%! truth = kelvane_pose([0.2 0.1 0, 0 0 -80], 'rotation_vector', 'world_from_camera');
%! pixels = kelvane_project(truth, points, [800 320 240]) + 0.05 * [sin(3 * (1:25)); cos(5 * (1:25))];
%! [~, info] = kelvane_estimate(points, pixels, [800 320 240]);
%! assert(info.exitflag, -6);
%! assert(norm(logm(info.pose.rotation' * info.alternative.pose.rotation)) > 0.1);
%! assert(info.alternative.rms, info.rms_after, 1e-3);

%!test  % what is displayed; nothing otherwise
%! [points, K, pixels] = scene();
%! pixels(:, 1:40) = pixels(:, [2:40, 1]);
%! assert(evalc('pose = kelvane_estimate(points, pixels, K);'), '');
%! final = evalc('[~, info] = kelvane_estimate(points, pixels, K, ''Display'', ''final'');');
%! lines = strsplit(strtrim(final), "\n");
%! assert(lines{1}, info.message);
%! assert(~isempty(regexp(lines{2}, sprintf('^%d of 60 points within [.\\d]+ after %d trials, RMS [.\\d]+\\.$', info.num_inliers, info.num_trials))));
%! rounds = evalc('[~, watched] = kelvane_estimate(points, pixels, K, ''Display'', ''iter'');');
%! assert(isequaln(watched, info));
%! lines = strsplit(strtrim(rounds), "\n");
%! assert(strsplit(strtrim(lines{1})), {'trials', 'of', 'about', 'inliers'});
%! assert(numel(lines) > 4);
%! assert(sscanf(lines{2}, '%d')(1), 32);

%!error <needs points, observations and intrinsics> kelvane_estimate(1, 2)
%!error <Did you mean 'MaxReprojectionError'> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'MaxReprojErr', 5)
%!error <'Weights' is not an option of kelvane_estimate> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Weights', 5)
%!error <MaxReprojectionError must be a number above 0 and finite> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'MaxReprojectionError', -1)
%!error <MaxAngle must be a number above 0 and finite> kelvane_estimate(rand(3, 5), rand(3, 5), [], 'MaxAngle', Inf)
%!error <Confidence must be a number above 0 and below 1> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Confidence', 1)
%!error <Confidence must be a number above 0 and below 1> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Confidence', 'a')
%!error <MaxNumTrials must be a number of 1 or more> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'MaxNumTrials', 0)
%!error <MaxNumTrials must be a whole number; this is 2.5> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'MaxNumTrials', 2.5)
%!error <Seed must be a number of 0 or more> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Seed', -1)
%!error <Seed must be a whole number; this is 0.5> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Seed', 0.5)
%!error <'maybe' is not a Display> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'Display', 'maybe')
%!error <'nowhere' is not a form of a pose> kelvane_estimate(rand(3, 5), rand(2, 5), [1 0 0], 'OutputForm', 'nowhere')
%!error <points must be 3 x 5 or 5 x 3> kelvane_estimate(rand(3, 4), rand(2, 5), [1 0 0])
%!error <points\(3, 1\) is NaN> kelvane_estimate([1 2 3 4; 1 2 4 3; NaN 1 2 3], rand(2, 4), [1 0 0])
%!error <observations\(2, 3\) is Inf> kelvane_estimate(rand(3, 4), [1 2 3 4; 4 5 Inf 6], [1 0 0])
%!error <observations\(:, 2\) has the length 0> kelvane_estimate(rand(3, 4), [1 0 1 1; 1 0 2 1; 1 0 3 1], [])
%!error <With 2 x N observations the intrinsics must be> kelvane_estimate(rand(3, 5), rand(2, 5), [])
%!error <observations must be 2 x N or N x 2> kelvane_estimate(rand(3, 5), rand(4, 5), [1 0 0])

%!demo
%! % two of three pixels belong to other points, and there is no start
%! k = 1:60;
%! points = [sin(7 * k); cos(11 * k); sin(13 * k + 1)];
%! truth = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%! pixels = kelvane_project(truth, points, [500 320 240]) + 0.5 * [sin(17 * k); cos(19 * k)];
%! pixels(:, 1:40) = pixels(:, [2:40, 1]);
%! [pose, info] = kelvane_estimate(points, pixels, [500 320 240], 'Display', 'final');
%! kelvane_plot(info, 'after')
