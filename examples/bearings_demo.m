% BEARINGS_DEMO  The pose of a camera that sees more than half of everything around it, from directions.
%
%   bearings_demo(folder)
%
%   Makes 90 points around a camera, observes their directions with a noise of 2 mrad, up to 120 degrees off the optical
%   axis, and refines a start that is 20 degrees and 20 % of the distance off. Prints errors beside the uncertainty that is
%   told, and saves bearings.png in folder, which must exist. Needs kelvane_refine. No screen is needed.
%
%   Example
%     bearings_demo('.');
%
%   See also kelvane_demo, kelvane_refine, kelvane_plot.

% SPDX-License-Identifier: BSD-3-Clause
% Directions where pixels do not reach.
function bearings_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  [truth, points, directions] = wide_angle_scene();
  start = kelvane_pose({truth.rotation * turn_about([1; 2; -1], 20), truth.centre + [0.6; -0.5; 0.2]}, 'rotation_centre', ...
                       'world_from_camera');
  [pose, info] = kelvane_refine(start, points, directions, []);
  fprintf('%s\n%d of %d points lie behind the image plane.\n', info.message, sum(directions(3, :) < 0), size(points, 2));
  sigma = sqrt(diag(info.covariance))';
  D = truth.rotation' * pose.rotation;
  off = [[D(3, 2) - D(2, 3), D(1, 3) - D(3, 1), D(2, 1) - D(1, 2)] / 2, (pose.centre - truth.centre)'];
  fprintf('%-22s %9s %9s %9s %9s %9s %9s\n', '', 'wx (rad)', 'wy', 'wz', 'tx', 'ty', 'tz');
  fprintf('%-22s%s\n', 'off the truth', sprintf(' %9.5f', off));
  fprintf('%-22s%s\n', 'standard deviation', sprintf(' %9.5f', sigma));
  f = new_picture(4);
  kelvane_plot(axes('position', [0.07, 0.22, 0.245, 0.68]), info, 'before');
  kelvane_plot(axes('position', [0.38, 0.22, 0.245, 0.68]), info, 'after');
  kelvane_plot(axes('position', [0.68, 0.02, 0.22, 0.9]), info, 'scene');
  save_picture(f, fullfile(folder, 'bearings.png'), [1800, 620]);
end

% Directions evenly around the axis, at angles up to 120 degrees; the noise is that of two coordinates across each ray.
function [truth, points, directions] = wide_angle_scene()
  truth = kelvane_pose([0.3, -0.4, 0.2, 1, -2, 0.5], 'rotation_vector', 'world_from_camera');
  k = 0:89;
  angle = acos(1 - 1.5 * (k + 0.5) / 90);
  turn = pi * (3 - sqrt(5)) * k;
  directions = [sin(angle) .* cos(turn); sin(angle) .* sin(turn); cos(angle)];
  points = truth.rotation * (directions .* (3 + 1.5 * sin(5 * k))) + truth.centre;
  directions = directions + 0.002 * repeatable_normal(3, 90, 1);
end

function R = turn_about(axis, degrees)
  n = axis / norm(axis);
  R = expm(degrees * pi / 180 * [0, -n(3), n(2); n(3), 0, -n(1); -n(2), n(1), 0]);
end
