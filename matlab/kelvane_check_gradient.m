% KELVANE_CHECK_GRADIENT  Compare the derivatives in kelvane_mex with differences of its prediction, at your own pose.
%
%   kelvane_check_gradient(pose, points, intrinsics)
%   kelvane_check_gradient(pose, points, intrinsics, name, value, ...)
%   error_of_J = kelvane_check_gradient(...)
%   [error_of_J, J, J_numeric] = kelvane_check_gradient(...)
%
%   kelvane_mex does not hand out its Jacobian J, but a step of it is the pseudoinverse of J times what the target is off:
%   one call for each equation gives the pseudoinverse, and its pseudoinverse is J. Differences of the prediction, with a
%   fourth-order stencil of step 3e-4 (of the distance of the nearest point for the centre), need no derivative. Without an
%   output the comparison is printed.
%
%   Inputs:
%     pose        as for kelvane_project
%     points      3 x N or N x 3 world points, N of 4 or more; of more than 20, 20 spread over them are used
%     intrinsics  [f cx cy] or a 3 x 3 K with equal focal lengths and no skew; [] for bearings
%
%   Options:
%     'RotationType'            number, name or title of kelvane_types, by default 'rotation vector'
%     'PoseForm', 'PoseFrame'   as for kelvane_project
%
%   Outputs:
%     error_of_J  largest difference of the two as a part of the largest derivative, along the directions that move the
%                 camera, shifts counted in the distance of the points: below 1e-7 where all is well, in any unit. Type 3
%                 fails by nature. Types -1 and -2 fail at a pose without rotation, where one of their derivatives does
%                 not exist; type -1 up to 1e-3 rad, where it loses its digits.
%     J           derivatives of the module, one row for each equation (for hybrid types three times), one column for each
%                 element of the search vector [r, t]
%     J_numeric   the same by differences
%
%   Example:
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%     >> kelvane_check_gradient(pose, points, [500 320 240], 'RotationType', 'qu') < 1e-7
%     ans = 1
%     >> kelvane_check_gradient(pose, points, [500 320 240], 'RotationType', 'qn') < 1e-7  % by nature
%     ans = 0
%
%
%   See also kelvane_mex, kelvane_types, kelvane_project.

% SPDX-License-Identifier: BSD-3-Clause
% The user's own check of the closed-form derivatives.
function [error_of_J, J, J_numeric] = kelvane_check_gradient(pose, points, intrinsics, varargin)
  if nargin < 3
    error('kelvane:inputs', 'kelvane_check_gradient needs pose, points and intrinsics ([] for bearing vectors).');
  end
  defaults = struct('RotationType', [], 'PoseForm', '', 'PoseFrame', '');
  options = parse_options('kelvane_check_gradient', defaults, varargin);
  [pose, points, K] = scene_of(pose, points, intrinsics, options);
  type = type_of(options.RotationType, isempty(K));
  unit = sqrt(mean(sum((points - pose.centre).^2, 1)));  % of length: derivatives by turns and shifts are then of one size
  if ~isfinite(unit)
    error('kelvane:notFinite', 'The points are too far from the camera: the squares of their distances are not finite.');
  end
  points = points / unit;
  pose.centre = pose.centre / unit;
  x = kelvane_pose(pose, type.representation, 'world_from_camera');
  J_numeric = kron(ones(type.blocks, 1), numeric_jacobian(type, K, points, x));
  J = recovered_jacobian(type, K, points, x, prediction(type, K, points, x));
  moving = directions_that_move(type, x);
  error_of_J = max(max(abs((J - J_numeric) * moving))) / max(max(abs(J_numeric * moving)));
  to_users = [ones(1, numel(x) - 3), 1 / unit, 1 / unit, 1 / unit] * unit^isempty(K);  % bearings are lengths, too
  J = J .* to_users;
  J_numeric = J_numeric .* to_users;
  if nargout == 0
    print_comparison(type, (J - J_numeric) * moving, J_numeric * moving, error_of_J);
    clear error_of_J;
  end
end

% The pose as a struct, 3 x n points, of many some that are spread over them, and the 3 x 3 K, [] for bearings.
function [pose, points, K] = scene_of(pose, points, intrinsics, options)
  [pose, form] = plain_pose(pose, form_name(options.PoseForm));
  pose = call_engine('pose', pose, form, frame_name(options.PoseFrame));
  intrinsics = plain_object(intrinsics, 'cameraIntrinsics');
  seen = kelvane_project(pose, points, intrinsics);
  n = size(seen, 2);
  if n < 4
    verbs = {'is', 'are'};
    error('kelvane:tooFewPoints', 'Four points are the least for every type; there %s %d.', verbs{1 + (n ~= 1)}, n);
  end
  points = full(double(points));
  if size(points, 1) ~= 3
    points = points';
  end
  points = evenly_spread(points, 20);
  K = matrix_of(intrinsics, size(seen, 1));
  if ~isempty(K) && (K(1, 1) ~= K(2, 2) || K(1, 2) ~= 0)
    error('kelvane:intrinsics', 'kelvane_mex has one focal length and no skew: there is no such derivative to check.');
  end
end

% [] for directions, which have three rows.
function K = matrix_of(intrinsics, num_rows)
  K = [];
  if num_rows == 2
    coefficients = 1;
    try
      [K, coefficients, kind] = call_engine('camera_as', intrinsics, 'opencv');
    catch  % BAL's camera and fields of view are none of OpenCV's
    end
    if any(coefficients) || strcmp(kind, 'fisheye')
      error('kelvane:intrinsics', 'kelvane_mex knows no lens: there is no such derivative to check.');
    end
  end
end

% which is a number, a short name, one of the words for the rotation that serve pixels and bearings alike, or [] for the
% rotation vector.
function type = type_of(which, bearing)
  words = {'rotation vector', 'axis and angle', 'quaternion'};
  if isempty(which)
    which = words{1};
  end
  if ~isnumeric(which)
    types = kelvane_types();
    which = one_of(which, [words, {types.name}], 'kelvane:rotationType', 'rotation type');
  end
  if any(strcmp(which, words))
    which = find(strcmp(which, words)) - 1 + 10 * bearing;
  end
  type = kelvane_types(which);
  if type.bearing ~= bearing
    kinds = {'pixels', 'bearing vectors'};
    error('kelvane:typeMismatch', 'Rotation type %d (%s) predicts %s, but the observations are %s.', type.number, ...
          type.name, kinds{1 + type.bearing}, kinds{1 + bearing});
  end
end

% The module does not bring bearings to unit length.
function seen = prediction(type, K, points, x)
  pose = kelvane_pose(x, type.representation, 'world_from_camera');
  seen = pose.rotation' * (points - pose.centre);
  if ~isempty(K)
    seen = K(1, 1) * seen(1:2, :) ./ seen(3, :) + K(1:2, 3);
  end
end

% The steps go with the distance, or depth, of the nearest point, which sees most of them.
function J = numeric_jacobian(type, K, points, x)
  points = points - x(end - 2:end)';  % the digits of a far origin are none of the steps'
  x(end - 2:end) = 0;
  p = prediction(type, [], points, x);
  distance = sqrt(sum(p.^2, 1));
  near = distance;
  if ~isempty(K)
    near = abs(p(3, :));
  end
  steps = 3e-4 * [repmat(min(near ./ distance), 1, numel(x) - 3), repmat(min(near), 1, 3)];
  J = zeros((3 - ~isempty(K)) * size(points, 2), numel(x));
  for k = 1:numel(x)
    for stencil = [-2, -1, 1, 2; 1 / 12, -2 / 3, 2 / 3, -1 / 12]
      moved = x;
      moved(k) = moved(k) + stencil(1) * steps(k);
      J(:, k) = J(:, k) + stencil(2) / steps(k) * reshape(prediction(type, K, points, moved), [], 1);
    end
  end
end

% The length of a quaternion or an axis turns nothing.
function P = directions_that_move(type, x)
  P = eye(numel(x));
  if type.rotation_size == 4
    num_free = 3 + strcmp(type.representation, 'quaternion_xyzw');
    free = x(1:num_free)' / norm(x(1:num_free));
    P(1:num_free, 1:num_free) = eye(num_free) - free * free';
  end
end

function print_comparison(type, difference, numeric, error_of_J)
  names = {'r1', 'r2', 'r3', 'r4', 't1', 't2', 't3'};
  if type.rotation_size == 3
    names(4) = [];
  end
  fprintf('Type %d (%s): derivatives of kelvane_mex and differences of its prediction\n', type.number, type.name);
  fprintf('%5s %16s %18s\n', 'by', 'largest', 'largest difference');
  for k = 1:numel(names)
    fprintf('%5s %16.6g %18.2g\n', names{k}, max(abs(numeric(:, k))), max(abs(difference(:, k))));
  end
  verdicts = {'They differ.', 'They agree.'};
  fprintf('%s The largest difference is %.2g of the largest derivative.\n', verdicts{1 + (error_of_J < 1e-7)}, error_of_J);
end

%!function pose = some_pose()
%!  pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%!endfunction

%!function points = some_points()
%!  points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%!endfunction

%!test  % all types but 3, which is not the derivative of its prediction
%! for type = kelvane_types()
%!   intrinsics = {[500 320 240], []};
%!   [e, J, numeric] = kelvane_check_gradient(some_pose(), some_points(), intrinsics{1 + type.bearing}, ...
%!                                            'RotationType', type.number);
%!   assert(size(J), [(2 + type.bearing) * 6 * type.blocks, type.rotation_size + 3]);
%!   assert(size(numeric), size(J));
%!   if type.number == 3
%!     assert(e > 0.1);
%!   else
%!     assert(e, 0, 1e-8);
%!   end
%! end

%!test  % without a rotation types -1 and -2 have no derivative, and next to it type -1 none that is exact
%! error_at = @(r, type) kelvane_check_gradient([r, 0 0 -4], some_points(), [500 320 240], 'RotationType', type, ...
%!                                              'PoseFrame', 'world_from_camera');
%! for type = [-1, -2]
%!   assert(error_at([0 0 0], type) > 0.1);
%! end
%! for type = [0, 1, 2, -3]
%!   assert(error_at([0 0 0], type), 0, 1e-7);
%! end
%! assert(error_at([3e-5 0 0], -1) > 1e-7);
%! assert([error_at([1e-3 0 0], -1), error_at([1e-4 0 0], -2)], [0, 0], 1e-7);

%!test  % without an output it prints a line for each element of the search vector
%! text = evalc('kelvane_check_gradient(eye(4), rand(3, 30), [], ''PoseFrame'', ''world_from_camera'')');
%! assert(numel(strfind(text, "\n")), 9);
%! assert(~isempty(strfind(text, 'They agree.')));

%!error <The points are too far from the camera> kelvane_check_gradient(some_pose(), 1e200 * some_points(), [500 0 0])
%!error <knows no lens> kelvane_check_gradient(some_pose(), some_points(), kelvane_camera([500 320 240], [0.1 0 0 0]))
%!error <knows no lens> kelvane_check_gradient(some_pose(), some_points(), kelvane_camera([500 320 240], [0 0 0 0], 'fisheye'))
%!error <knows no lens> kelvane_check_gradient(some_pose(), some_points(), kelvane_camera('FOV', [500 500 320 240 0.5]))
%!error <Four points are the least for every type; there are 3> kelvane_check_gradient(some_pose(), eye(3), [500 0 0])
%!error <Four points are the least for every type; there is 1> kelvane_check_gradient(some_pose(), [1; 2; 3], [500 0 0])
%!error <one focal length and no skew> kelvane_check_gradient(some_pose(), some_points(), [5 0 0; 0 6 0; 0 0 1])
%!error <one focal length and no skew> kelvane_check_gradient(some_pose(), some_points(), [5 1 0; 0 5 0; 0 0 1])
%!error <predicts bearing vectors, but the observations are pixels> kelvane_check_gradient(some_pose(), some_points(), [5 0 0], 'RotationType', 10)

%!demo
%! % every rotation type at one pose; without an output the comparison is printed
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%! for type = {'aau', 'aan', 'qu', 'qn'}
%!   kelvane_check_gradient(pose, points, [500 320 240], 'RotationType', type{1})
%! end
