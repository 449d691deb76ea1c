% PHOTOGRAPH_DEMO  A photograph of a chessboard, with the board's lines where a pose sees them, before and after refinement.
%
%   photograph_demo(folder)
%
%   Refines the pose of one photograph from a start that is 3 degrees and 5 % of the distance off, prints what was found, and
%   saves photograph.png in folder, which must exist. The measured corners are without the distortion of the lens; the lines
%   are drawn through it, as the photograph was taken. No screen is needed.
%
%   Example
%     photograph_demo('.');
%
%   See also kelvane_demo, kelvane_refine, kelvane_camera, chessboard_view.

% SPDX-License-Identifier: BSD-3-Clause
% What a refinement is for, in one picture.
function photograph_demo(folder)
  quiet = picture_toolkit(); %#ok<NASGU>
  view = chessboard_view(5);
  photograph = imread(fullfile(fileparts(mfilename('fullpath')), 'data', 'chessboard', 'left05.jpg'));
  start = kelvane_pose(view.start{1}, 'rotation_vector', 'world_from_camera');
  [pose, info] = kelvane_refine(start, view.points, view.pixels, view.intrinsics);
  fprintf('%s\nRMS %.2f pixels before, %.2f after\n', info.message, info.rms_before, info.rms_after);
  K = [view.intrinsics(1), 0, view.intrinsics(2); 0, view.intrinsics(1), view.intrinsics(3); 0, 0, 1];
  camera = kelvane_camera(K, [-0.26637, -0.038589, 0.0017832, -0.00028122, 0.23839]);  % as OpenCV calibrated it
  f = new_picture();
  panel(0.005, photograph, kelvane_project(start, view.points, camera), sprintf('before: RMS %.2f pixels', info.rms_before));
  panel(0.505, photograph, kelvane_project(pose, view.points, camera), sprintf('after: RMS %.2f pixels', info.rms_after));
  save_picture(f, fullfile(folder, 'photograph.png'), [920, 380]);
end

% The photograph, in 32 greys for the sake of a small file, and lines through the 9 x 6 corners where they are seen.
function panel(left, photograph, seen, name)
  axes('position', [left, 0.01, 0.49, 0.9]);
  image(0:size(photograph, 2) - 1, 0:size(photograph, 1) - 1, 8 * floor(double(photograph) / 8) + 4);
  colormap(gray(256));
  hold on;
  u = reshape(seen(1, :), 9, 6);
  v = reshape(seen(2, :), 9, 6);
  plot(u, v, '-', 'color', [1, 0.45, 0], 'linewidth', 2);
  plot(u', v', '-', 'color', [1, 0.45, 0], 'linewidth', 2);
  axis equal;
  axis([0, size(photograph, 2) - 1, 0, size(photograph, 1) - 1]);
  set(gca, 'ydir', 'reverse', 'xtick', [], 'ytick', []);  % v points down
  text(size(photograph, 2) / 2, -18, name, 'horizontalalignment', 'center');
end
