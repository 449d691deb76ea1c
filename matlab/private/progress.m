% SPDX-License-Identifier: BSD-3-Clause
% Shows one entry of a refinement's history as Display and OutputFcn ask for it. state is 'init', 'iter' or 'done'; the
% result says whether OutputFcn wants to stop.
function stop = progress(problem, options, entry, k, state)
  stop = false;
  rms = sqrt(entry.cost / size(problem.points, 2));
  turn = norm(entry.motion(1:3));
  shift = norm(entry.motion(4:6)) * problem.unit;
  if strcmp(options.Display, 'iter') && ~strcmp(state, 'done')
    if k == 0
      fprintf('%9s %14s %14s %14s\n', 'iteration', 'RMS', 'turn (rad)', 'shift');
    end
    fprintf('%9d %14.6g %14.3g %14.3g\n', k, rms, turn, shift);
  end
  if ~isempty(options.OutputFcn)
    values = struct('iteration', k, 'rms', rms, 'turn', turn, 'shift', shift);
    pose = write_pose(pose_of_state(problem, entry.state), options.OutputForm, options.OutputFrame);
    stop = isequal(options.OutputFcn(pose, values, state), true);
  end
end
