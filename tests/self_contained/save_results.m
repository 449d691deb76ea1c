% SPDX-License-Identifier: BSD-3-Clause
% Writes the poses that kelvane_mex returns: one line for each problem, type and kind of Jacobian, with its name before.
function save_results(name)
  file = fopen(name, 'w');
  close_it = onCleanup(@() fclose(file));
  for i = 1:6
    view = chessboard_view(i);
    for type = [0:3, -3:-1]
      camera = [view.start{representation_of(type)}, view.intrinsics];
      save_calls(file, sprintf('chessboard %d', i), camera, view.points, view.pixels, type);
    end
  end
  for set = {'bal', 'bal_adjusted', 'castle'}
    for problem = shared_problems(set{1}, 'pixel')
      save_calls(file, problem.name, [problem.start, problem.intrinsics], problem.points, problem.observations, 0);
    end
  end
  for problem = shared_problems('omni', 'chord')
    save_calls(file, problem.name, [problem.start, 1, 0, 0], problem.points, problem.observations, 10);
  end
end

function save_calls(file, name, camera, points, observations, type)
  for flag = 0:1
    x = kelvane_mex(camera, points, observations, [1, 0, 1e38, flag], type);
    fprintf(file, '%s, type %d, flag %d:%s\n', name, type, flag, sprintf(' %.17g', x));
  end
end
