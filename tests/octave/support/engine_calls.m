% SPDX-License-Identifier: BSD-3-Clause
% Inputs that kelvane_engine accepts, a cell array for each of its questions: 'refine' and 'descend' for two problems, as pixels
% and as directions, 'project' and 'pose'.
function calls = engine_calls()
  view = chessboard_view(1);
  corners = [1, 5, 9, 22, 46, 54];
  points = view.points(:, corners);
  pixels = view.pixels(:, corners);
  start = view.start{1};
  pose = kelvane_engine('pose', start, 'rotation_vector', 'world_from_camera');
  options = struct('PoseForm', {'pose', 'rotation_vector'}, 'PoseFrame', {'', 'world_from_camera'}, 'OutputForm', '', ...
                   'OutputFrame', '', 'MaxIterations', 50, 'StepTolerance', 1e-9, 'FunctionTolerance', 0, ...
                   'Weights', {ones(1, 6), []}, 'Loss', {'huber', 'none'}, 'LossScale', [], 'NoiseSigma', [], ...
                   'ObservationCovariance', {[], 1e-6 * eye(3)}, 'Fixed', {[0; 0; 0; 0; 0; 1], []}, ...
                   'Prior', {struct('pose', pose, 'covariance', eye(6)), []});
  K = [view.intrinsics(1), 0, view.intrinsics(2); 0, view.intrinsics([1, 3]); 0, 0, 1];
  directions = K \ [pixels; ones(1, 6)];
  problems = {{pose, start}, {points, points'}, {pixels, directions}, {K, []}, num2cell(options), {[], []}, Inf, 1};
  calls = {[{'refine'}, problems], [{'descend'}, problems], ...
           {'project', pose, points, K, struct('PoseForm', 'pose', 'PoseFrame', '')}, ...
           {'pose', start, 'rotation_vector', 'world_from_camera', 'matrix4x4', 'camera_from_world'}};
end
