% KELVANE_CHECK_GRADIENT  Compare the derivatives in kelvane_mex with differences of its prediction, at your own pose.
%
%   kelvane_check_gradient(pose, points, intrinsics)
%   kelvane_check_gradient(pose, points, intrinsics, name, value, ...)
%   error_of_J = kelvane_check_gradient(...)
%   [error_of_J, J, J_numeric] = kelvane_check_gradient(...)
%
%   kelvane_mex does not hand out its Jacobian J, but a step of it is the pseudoinverse of J times what the target is off:
%   one call for each equation gives the pseudoinverse, and its pseudoinverse is J. Differences of the prediction, with a
%   fourth-order stencil of step 3e-4, need no derivative. Without an output the comparison is printed.
%
%   Inputs:
%     pose        as for kelvane_project
%     points      3 x N or N x 3 world points, N of 4 or more; of more than 20, 20 spread over them are used
%     intrinsics  [f cx cy] or a 3 x 3 K with equal focal lengths and no skew; [] for bearings
%
%   Options:
%     'RotationType'            as for kelvane_refine
%     'PoseForm', 'PoseFrame'   as for kelvane_project
%
%   Outputs:
%     error_of_J  largest difference of the two as a part of the largest derivative, along the directions that move the
%                 camera: below 1e-7 where all is well. Type 3 fails by nature. Types -1 and -2 fail at a pose without
%                 rotation, where one of their derivatives does not exist; type -1 up to 1e-3 rad, where it loses its digits.
%     J           derivatives of the module, one row for each equation (for hybrid types three times), one column for each
%                 element of the search vector [r, t]
%     J_numeric   the same by differences
%
%   Example:
%     points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%     for type = [0 1 2 3]
%       ok = kelvane_check_gradient(pose, points, [500 320 240], 'RotationType', type) < 1e-7;
%       fprintf('type %d: %d\n', type, ok);
%     end
%   Output:
%     type 0: 1
%     type 1: 1
%     type 2: 1
%     type 3: 0
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
  pose = pose_of_input(pose, options);
  points = some_of(read_points(points));
  camera = read_intrinsics(intrinsics);
  if camera.A(1, 1) ~= camera.A(2, 2) || camera.A(1, 2) ~= 0
    error('kelvane:intrinsics', 'kelvane_mex has one focal length and no skew: there is no such derivative to check.');
  end
  type = read_type(options.RotationType, camera.bearing);
  x = [rotation_entries(type.representation, pose.rotation), pose.centre'];
  J_numeric = kron(ones(type.blocks, 1), numeric_jacobian(type, camera, points, x));
  J = recovered_jacobian(type, camera, points, x);
  moving = directions_that_move(type, x);
  error_of_J = max(max(abs((J - J_numeric) * moving))) / max(max(abs(J_numeric * moving)));
  if nargout == 0
    print_comparison(type, (J - J_numeric) * moving, J_numeric * moving, error_of_J);
    clear error_of_J;
  end
end

function points = some_of(points)
  most = 20;
  n = size(points, 2);
  if n < 4
    error('kelvane:tooFewPoints', 'Four points are the least for every type; there are %d.', n);
  end
  points = points(:, unique(round(linspace(1, n, min(n, most)))));
end

function seen = prediction(type, camera, points, x)
  R = rotation_of_entries(type.representation, x(1:type.rotation_size));
  p = camera_points(R, x(end - 2:end)', points);
  seen = p;  % the module does not bring bearings to unit length
  if ~camera.bearing
    seen = predicted(camera, p);
  end
end

function J = numeric_jacobian(type, camera, points, x)
  step = 3e-4;
  J = zeros(numel(prediction(type, camera, points, x)), numel(x));
  for k = 1:numel(x)
    for stencil = [-2, -1, 1, 2; 1 / 12, -2 / 3, 2 / 3, -1 / 12]
      moved = x;
      moved(k) = moved(k) + stencil(1) * step;
      J(:, k) = J(:, k) + stencil(2) / step * reshape(prediction(type, camera, points, moved), [], 1);
    end
  end
end

% The blocks of a hybrid type are told apart by giving weight to one at a time.
function J = recovered_jacobian(type, camera, points, x)
  seen = prediction(type, camera, points, x);
  push = max(camera.A(1, 1), 1);  % steps of about 1 keep the digits of small ones
  J = zeros(0, numel(x));
  for block = 1:type.blocks
    weights = kron(double((1:type.blocks) == block), ones(1, numel(seen)));
    inverse = zeros(numel(x), numel(seen));
    for k = 1:numel(seen)
      target = seen;
      target(k) = target(k) + push;
      inverse(:, k) = (stepped(type, x, [camera.A(1, 1), camera.c'], points, target, weights, false) - x)' / push;
    end
    J = [J; pinv(inverse, 1e-9 * norm(inverse))]; %#ok<AGROW>
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
%! assert(error_at([1e-4 0 0], -1) > 1e-7);
%! assert([error_at([1e-3 0 0], -1), error_at([1e-4 0 0], -2)], [0, 0], 1e-7);

%!test  % the blocks of a hybrid type are looked at one by one: here the quaternion's has the opposite sign
%! pose = kelvane_pose([-2.5 0.1 0.2, 3 0 3], 'rotation_vector', 'world_from_camera');
%! [e, J, numeric] = kelvane_check_gradient(pose, some_points(), [500 320 240], 'RotationType', -2);
%! assert(e > 1);
%! assert(J([1:12, 25:36], :), numeric([1:12, 25:36], :), 1e-8 * max(abs(numeric(:))));
%! assert(J(13:24, 1:3), -numeric(13:24, 1:3), 1e-8 * max(abs(numeric(:))));

%!test  % without an output it prints a line for each element of the search vector
%! text = evalc('kelvane_check_gradient(eye(4), rand(3, 30), [], ''PoseFrame'', ''world_from_camera'')');
%! assert(numel(strfind(text, "\n")), 9);
%! assert(~isempty(strfind(text, 'They agree.')));

%!error <Four points are the least> kelvane_check_gradient(some_pose(), eye(3), [500 0 0])
%!error <one focal length and no skew> kelvane_check_gradient(some_pose(), some_points(), [5 0 0; 0 6 0; 0 0 1])
%!error <one focal length and no skew> kelvane_check_gradient(some_pose(), some_points(), [5 1 0; 0 5 0; 0 0 1])
%!error <predicts bearing vectors, but the observations are pixels> kelvane_check_gradient(some_pose(), some_points(), [5 0 0], 'RotationType', 10)
