% SPDX-License-Identifier: BSD-3-Clause
% Refines num_starts far starts, spread over scenes of far_scene, from a seed. Fields of tally: converged (exit flag
% positive), found (the optimum as well), iterations (their median), worse (poses with a higher RMS than their start),
% errors (any error at all) and endless (more iterations than the limit).
function tally = refine_far_starts(scenes, num_starts, seed)
  randn('state', seed); rand('state', seed);
  tally = struct('converged', 0, 'found', 0, 'iterations', [], 'worse', 0, 'errors', 0, 'endless', 0);
  for i = 1:num_starts
    scene = scenes(1 + mod(i, numel(scenes)));
    start = far_start(scene.optimum, scene.points);
    try
      [pose, info] = kelvane_refine(start, scene.points, scene.observations, scene.intrinsics);
    catch problem
      tally.errors = tally.errors + 1;
      fprintf('start %d: %s\n', i, problem.message);
      continue;
    end
    distance = norm(scene.optimum.centre - mean(scene.points, 2));
    found = norm(pose.rotation - scene.optimum.rotation) < 1e-6 && norm(pose.centre - scene.optimum.centre) < 1e-6 * distance;
    tally.converged = tally.converged + (info.exitflag > 0);
    tally.found = tally.found + found;
    tally.iterations(end + 1) = info.iterations;
    rounding = 1e-14;  % of the sums
    tally.worse = tally.worse + ~(rms_of(pose, scene) <= rms_of(start, scene) * (1 + rounding));
    tally.endless = tally.endless + (info.iterations > 100);
  end
  tally.iterations = median(tally.iterations);
end

% By the public prediction, not by what the refinement says of itself.
function rms = rms_of(pose, scene)
  seen = kelvane_project(pose, scene.points, scene.intrinsics);
  observed = scene.observations;
  if isempty(scene.intrinsics)
    observed = observed ./ sqrt(sum(observed.^2));
  end
  rms = sqrt(mean(sum((seen - observed).^2)));
end
