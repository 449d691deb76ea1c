% KELVANE_MEX  Refine a camera pose from 3D points and their observations.
%
%   x = kelvane_mex(camera, points, observations)
%   x = kelvane_mex(camera, points, observations, criteria)
%   x = kelvane_mex(camera, points, observations, criteria, type)
%   x = kelvane_mex(camera, points, observations, criteria, type, weights)
%
%   Moves the pose by Gauss-Newton steps so that the points, seen by the camera, fall on their observations with the
%   least sum of squared differences. Exactly one output must be asked for. Nothing is printed, no input is changed and
%   nothing is kept between calls.
%
%   A pose is a rotation R and a centre t: R turns camera coordinates into world coordinates, t is the camera centre in
%   world coordinates. A world point X lies at p = R' * (X - t) in the camera frame (z forward), and its pixel is
%       u = k11 * p(1) / p(3) + k13,    v = k11 * p(2) / p(3) + k23.
%
%   Inputs: full real double arrays; sparse and complex arrays and every other class are refused.
%     camera        vector of 9 or 10 values [r, t, k11, k13, k23], row or column: the rotation r to start from (3 or 4
%                   values, see the types), the centre t to start from (3 values, unit of the points), the focal length
%                   k11 of both axes and the principal point (k13, k23), in pixels. The last three are not refined.
%     points        3 x N, one world point in each column, any unit of length.
%     observations  2 x N pixels (u; v), one in each column, in the order of the points; 3 x N for types 10 to 12.
%     criteria      vector of 4 values [max_iters, min_x_step, min_y_step, use_finite_difference], see below.
%     type          the rotation type, default 0. Fractions are cut off (2.7 is 2); of a row the first element counts.
%     weights       vector with one factor for each equation, default all 1, see below.
%
%   Output:
%     x             1 x 6 (rotation of 3 values) or 1 x 7 (of 4 values): the refined [r, t]. The camera of the next call
%                   is [x, k11, k13, k23].
%
%   Rotation types and the elements of r, all angles in radians:
%      0  aau        rotation vector (axis * angle)                      [rx, ry, rz]
%      1  aan        axis (length 1e-8 or more) and angle, angle last    [ax, ay, az, angle]
%      2  qu         quaternion of length 1e-10 to 1e10, scalar last     [qx, qy, qz, qw]
%      3  qn         the same, differentiated as if of unit length       [qx, qy, qz, qw]
%     10  aau-bv     bearing vectors, r as in type 0                     [rx, ry, rz]
%     11  aan-bv     bearing vectors, r as in type 1                     [ax, ay, az, angle]
%     12  qu-bv      bearing vectors, r as in type 2                     [qx, qy, qz, qw]
%     -1  qu,aau,aan every equation three times, r as in type 2          [qx, qy, qz, qw]
%     -2  aau,qu,aan every equation three times, r as in type 0          [rx, ry, rz]
%     -3  aan,qu,aau every equation three times, r as in type 1          [ax, ay, az, angle]
%   Type 0 is the one to use, and the quickest; types 1 and 2 do as well. Their Jacobian is singular, as the length of an
%   axis or a quaternion changes nothing, and every step leaves that length alone. A start of type 1 with angle 0 turns
%   about the given axis only in its first step. The Jacobian of type 3 holds the diagonal of the
%   rotation in unsquared entries: it is not the derivative of the prediction, and refinements with it mostly diverge.
%   Types -3 to -1 stack the pixel equations three times, each block differentiated through the representation named
%   there. Where one of those derivatives is not finite (types -1 and -2 without a rotation or a tiny one, type -1 with
%   a scalar of 1 or more in size) the start is returned; with type -1 keep the quaternion at unit length and its scalar
%   positive.
%   Types 10 to 12 predict p itself, not scaled: k11 must be 1 and k13, k23 must be 0 (to 0.0001). Their target is filled
%   as if it were pixels: the first two rows of the observations, pair after pair, take the first 2 * N of the 3 * N
%   equations and zeros the last N; the third row is not read.
%
%   Criteria:
%     Without criteria a call makes 10 iterations. With criteria it makes 3 for type 0 and 1 for every other type; the
%     first criterion, max_iters, is not used. Repeat the call to go on. Criteria are stored in single precision.
%     min_x_step              stop, and drop the new point, when the absolute differences between the best point so far
%                             and the new one sum to less than this. Default 0: never.
%     min_y_step              stop, and drop the new point, when from the second iteration of a call on the squared
%                             error decreases by less than this. Default -10000: only when it grows by more than 10000.
%                             Neither is looked at where a call makes one iteration.
%     use_finite_difference   0: closed-form Jacobian. Any other value: forward differences with steps of 0.01 for t and
%                             0.0314 for r, 0.314 where r is a quaternion.
%     The best of the new points is returned, so the result can be worse than the start, whose error is not looked at;
%     a point whose squared error is NaN or infinite never is. Where all are, the start is returned.
%
%   Weights multiply the equations (not their squares), in the order u1, v1, u2, v2, ... (types 10 to 12: three for each
%   point; types -3 to -1: that order three times). Only the first iteration of a call is weighted throughout: later
%   ones subtract unweighted predictions from weighted observations. Where weights matter, make calls of one iteration:
%   give criteria, and for type 0 a min_y_step of 1e38. The squared error that picks the best point is unweighted.
%   The size and class in the error of a wrong weights vector are those of the input type.
%
%   Errors have the identifier 'Mex:exception'. Their message is a report of one or more blocks of three lines: file and
%   line, function, and 'Details: ' with what went wrong. The block that is not indented, mostly the last, is where the
%   fault was found: read it first. The text of an error from a library follows its block. Each block above, indented by
%   one tab more, is a caller's context, such as the numbers of points and equations.
%
%   Example: a camera at (0.1, -0.2, -4) that looks along z, found again from a start that is a little off
%     >> points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%     >> centre = [0.1; -0.2; -4];
%     >> p = points - repmat(centre, 1, 6);
%     >> pixels = [500 * p(1, :) ./ p(3, :) + 320; 500 * p(2, :) ./ p(3, :) + 240];
%     >> camera = [0.02 -0.03 0.01, 0.2 -0.1 -3.8, 500 320 240];
%     >> x = kelvane_mex(camera, points, pixels);
%     >> fprintf('turn %.6f rad, centre (%.6f, %.6f, %.6f)\n', norm(x(1:3)), x(4:6))
%     turn 0.000000 rad, centre (0.100000, -0.200000, -4.000000)
%
%
%   See also kelvane_refine, kelvane_types, kelvane_check_gradient, kelvane_demo.

% SPDX-License-Identifier: BSD-3-Clause
% Help of the compiled function, which takes precedence over this file in the same folder.
function x = kelvane_mex(varargin) %#ok<STOUT>
  error('kelvane:notBuilt', ['The compiled function %s (.mex or .mexa64) is not on the path. Build it by ' ...
        'kelvane_build, or by "cmake --preset release" and "cmake --build --preset release" and then addpath the folder ' ...
        'build/release, so that it comes before this one.'], 'kelvane_mex');
end

%!demo
%! % one call each time from where the last one ended
%! points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%! pose = struct('rotation', eye(3), 'centre', [0.1; -0.2; -4]);
%! pixels = kelvane_project(pose, points, [500 320 240]);
%! x = [0.02 -0.03 0.01, 0.2 -0.1 -3.8]
%! for call = 1:3
%!   x = kelvane_mex([x, 500 320 240], points, pixels)
%! end
