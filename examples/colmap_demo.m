% COLMAP_DEMO  Refine all poses of a COLMAP model, on all processors, and write it back.
%
%   colmap_demo(folder)
%   colmap_demo(folder, model)
%   colmap_demo(folder, model, refined)
%
%   Reads the model in the folder model, text or binary, moves every pose by 2 degrees and 3 % of its distance to the points,
%   refines all of them with Huber's loss on threads, and prints a table. Writes the model with its new poses into the folder
%   refined, and reads it again. Without a model a small one of our own making is used: 12 photographs of a house. What has
%   no folder of its own is in folder for as long as it is needed. Saves colmap.png in folder, which must exist: the RMS of
%   each image before and after, and the model with its cameras. Needs kelvane_batch. No screen is needed.
%
%   Example
%     colmap_demo('.');
%
%   See also kelvane_demo, kelvane_read_colmap, kelvane_batch, kelvane_write_colmap.

% SPDX-License-Identifier: BSD-3-Clause
% A whole model from file to picture.
function colmap_demo(folder, model, refined)
  quiet = picture_toolkit(); %#ok<NASGU>
  if nargin < 2 || isempty(model)
    [model, removing] = folder_for_model(folder); %#ok<ASGLU>
    write_house_model(model);
  end
  if nargin < 3
    [refined, removing_too] = folder_for_model(folder); %#ok<ASGLU>
  end
  problems = disturbed(kelvane_read_colmap(model));
  timer = tic;
  results = kelvane_batch(problems, 'Loss', 'huber', 'Progress', 'line');
  fprintf('%d poses in %.2f s\n', numel(problems), toc(timer));
  print_results(problems, results);
  kelvane_write_colmap(refined, model, results);
  print_written(kelvane_read_colmap(refined), results);
  plot_model(problems, results, fullfile(folder, 'colmap.png'));
end

% Each pose turned by 2 degrees and moved by 3 % of its distance, another way for each.
function problems = disturbed(problems)
  for k = 1:numel(problems)
    problems(k).start_of_file = problems(k).start;
    way = @(j) sin(k * [1; 2; 3] + j) / norm(sin(k * [1; 2; 3] + j));
    w = way(0) * 2 * pi / 180;
    distance = norm(problems(k).start.centre - mean(problems(k).points, 2));
    problems(k).start.rotation = problems(k).start.rotation * expm([0, -w(3), w(2); w(3), 0, -w(1); -w(2), w(1), 0]);
    problems(k).start.centre = problems(k).start.centre + way(1) * 0.03 * distance;
  end
end

function print_results(problems, results)
  width = max(5, max(cellfun(@numel, {problems.name})));
  fprintf('%-*s %7s %12s %12s %11s %22s\n', width, 'image', 'points', 'RMS before', 'RMS after', 'iterations', ...
          'from the file (deg, %)');
  for k = 1:numel(results)
    if ~isempty(results(k).error)
      fprintf('%-*s %s\n', width, results(k).name, results(k).error);
      continue;
    end
    pose = results(k).pose;
    known = problems(k).start_of_file;
    turn = 2 * asin(min(1, norm(pose.rotation - known.rotation, 'fro') / sqrt(8))) * 180 / pi;
    shift = 100 * norm(pose.centre - known.centre) / norm(known.centre - mean(problems(k).points, 2));
    info = results(k).info;
    fprintf('%-*s %7d %12.3f %12.3f %11d %11.4f %10.4f\n', width, results(k).name, size(problems(k).points, 2), ...
            info.rms_plain_before, info.rms_plain_after, info.iterations, turn, shift);
  end
end

% The RMS that the written poses have when they are read again.
function print_written(problems, results)
  good = find(cellfun(@isempty, {results.error}));
  again = zeros(size(good));
  for i = 1:numel(good)
    problem = problems(good(i));
    seen = kelvane_project(problem.start, problem.points, problem.intrinsics);
    again(i) = sqrt(mean(sum((seen - problem.observations).^2, 1)));
  end
  infos = [results(good).info];
  fprintf('written and read again: %d poses, RMS of each as refined to %.0e pixels\n', numel(good), ...
          max([eps, abs(again - [infos.rms_plain_after])]));
end

% One that is there as long as the second output.
function [model, removing] = folder_for_model(folder)
  model = tempname(folder);
  [made, message] = mkdir(model);
  if ~made || ~isempty(message)
    error('kelvane:demo', 'The folder %s cannot be made: %s.', model, message);
  end
  removing = onCleanup(@() remove_model(model));
end

function remove_model(model)
  files = dir(model);
  for k = find(~[files.isdir])
    remove_file(fullfile(model, files(k).name));
  end
  rmdir(model);
end
