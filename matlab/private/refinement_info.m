% SPDX-License-Identifier: BSD-3-Clause
% The info of kelvane_refine for what iterate returned and the inputs as they were read.
function info = refinement_info(result, given, options)
  users = in_user_coordinates(result.problem, given);
  history = history_of_poses(result, given);
  for k = numel(history):-1:1
    costs(k) = cost_of_pose(users, history(k).pose);
    history(k).rms = sqrt(costs(k) / size(given.points, 2));
  end
  [best, exitflag] = chosen(costs, result);
  pose = history(best).pose;
  [~, residuals, s, p] = cost_of_pose(users, pose);
  inliers = strcmp(users.loss.name, 'none') | s <= 3 * users.scale / users.loss.tuning;
  J = tangent_jacobian(given.camera, pose.rotation, p);
  [covariance, noise_sigma, determined] = covariance_of_pose(J, s, given.weights, inliers, users.loss, users.scale, ...
                                                             options.NoiseSigma);
  num_pulling = sum(any(given.weights > 0, 1) & users.loss.weight(s, users.scale) > 0);
  if num_pulling < 3
    covariance = Inf(6);
    determined = false;
  end
  if ~determined && exitflag ~= -3
    exitflag = -4;
  end
  num_behind = sum(p(3, :) <= 0 & ~given.camera.bearing);
  info = struct('exitflag', exitflag, 'message', exit_message(exitflag, options, num_behind, num_pulling), ...
                'rms_before', history(1).rms, 'rms_after', history(best).rms, 'iterations', numel(history) - 1, ...
                'residuals', residuals, 'history', history, 'covariance', covariance, 'noise_sigma', noise_sigma, ...
                'inliers', inliers, 'loss_scale', users.scale, 'num_behind', num_behind, ...
                'rotation_type', given.type.number, 'pose', pose, 'points', given.points, ...
                'observations', given.observations, 'intrinsics', matrix_of_camera(given.camera));
end

% With the scale of the loss that the refinement ended with.
function problem = in_user_coordinates(problem, given)
  problem.points = given.points;
  problem.observations = given.observations;
  problem.weights = given.weights;
end

function [cost, residuals, s, p] = cost_of_pose(problem, pose)
  [cost, residuals, s, p] = residuals_at(problem, struct('R', pose.rotation, 't', pose.centre));
end

function history = history_of_poses(result, given)
  for k = numel(result.history):-1:1
    entry = result.history(k);
    history(k) = struct('pose', pose_of_state(result.problem, entry.state), 'rms', 0, ...
                        'turn', norm(entry.motion(1:3)), 'shift', norm(entry.motion(4:6)) * result.problem.unit);
  end
  history(1).pose = given.pose;  % not to the scaled problem and back
end

% The last pose, unless another scale of the loss or rounding makes the start the better one.
function [best, exitflag] = chosen(costs, result)
  best = numel(costs);
  exitflag = result.exitflag;
  if ~(costs(end) < costs(1))
    best = 1;
    way = motion_between(result.history(1).state, result.history(end).state);
    if costs(end) > costs(1) * (1 + 1e-12) && norm(way) > hidden_by_rounding()
      exitflag = -2;
    end
  end
end

% 3 x 3, or [] for bearings.
function K = matrix_of_camera(camera)
  K = [];
  if ~camera.bearing
    K = [camera.A, camera.c; 0, 0, 1];
  end
end
