% CONVENTIONS_DEMO  The frames of a camera and of the world, the image and directions, drawn from one pose.
%
%   conventions_demo(folder)
%
%   Draws a pose with the functions that compute with it: the camera's axes are the columns of its rotation, pixels are
%   those of kelvane_project. Prints the pose in both frames and the pixel of one point. Saves conventions_frames.png,
%   conventions_pixels.png and conventions_bearings.png in folder, which must exist. No screen is needed.
%
%   Example
%     conventions_demo('.');
%
%   See also kelvane_demo, kelvane_pose, kelvane_project.

% SPDX-License-Identifier: BSD-3-Clause
% What the words of the conventions look like.
function conventions_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  % Seen along a camera that looks along the world's y: x stays, y of the camera is down, -z of the world.
  level = [1, 0, 0; 0, 0, 1; 0, -1, 0];
  pose = struct('rotation', turn_about([0; 0; 1], -18) * level * turn_about([1; 0; 0], -8), 'centre', [1.8; -0.3; 1.5]);
  in_camera = [0.1, -0.5, 0.6, -0.2; -0.4, 0.3, 0.35, -0.4; 2, 2, 2.3, 1.8];
  points = pose.rotation * in_camera + pose.centre;
  intrinsics = [700, 320, 240];
  pixels = kelvane_project(pose, points, intrinsics);
  way = kelvane_pose(pose, 'rotation_translation', 'camera_from_world');
  p = way{1} * points(:, 1) + way{2};
  fprintf('centre t (%.3f, %.3f, %.3f), s = -R''t (%.3f, %.3f, %.3f)\n', pose.centre, way{2});
  fprintf('X (%.3f, %.3f, %.3f), p = Q X + s (%.3f, %.3f, %.3f), pixel (%.1f, %.1f)\n', points(:, 1), p, pixels(:, 1));
  plot_frames(pose, points(:, 1), intrinsics, fullfile(folder, 'conventions_frames.png'));
  plot_image_frame(pixels, intrinsics, fullfile(folder, 'conventions_pixels.png'));
  plot_directions(fullfile(folder, 'conventions_bearings.png'));
end

function R = turn_about(n, degrees)
  R = expm(degrees * pi / 180 * [0, -n(3), n(2); n(3), 0, -n(1); -n(2), n(1), 0]);
end
