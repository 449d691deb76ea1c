% KELVANE_DEMO  List and run the demonstrations.
%
%   kelvane_demo()
%   kelvane_demo(name)
%   kelvane_demo(name, folder)
%   files = kelvane_demo(...)
%
%   Without a name they are listed. name is one of the list, or 'all'. Each takes a few seconds, prints what it finds and
%   saves pictures (PNG) in folder, which is made where it is not there, and in which no picture is replaced; without
%   folder in a new one below that for temporary files. The demos lie in the folder examples, one function each: read them.
%
%   files is a 1 x n cell with the pictures that were saved.
%
%   'colmap' takes a model of your own too: see help colmap_demo, once the folder examples is on the path.
%
%   Example:
%     >> kelvane_demo()
%     chessboard  six photographs of a chessboard, refined with four rotation types
%     photograph  a chessboard's lines in its photograph, before and after a refinement
%     types       the seven rotation types for pixels racing on one view
%     outliers    a fifth of the corners in wrong places, with and without a robust loss
%     matches     60 % of the corners mistaken for each other, and no start
%     bearings    a wide-angle camera, some directions more than 90 degrees off its axis
%     colmap      a whole COLMAP model, read, refined on all processors and written back
%     convergence the seven rotation types for pixels on six photographs of a chessboard
%     conventions the frames, the image and directions, drawn from one pose
%
%
%   See also kelvane_refine, kelvane_batch, kelvane_plot, kelvane_mex.

% SPDX-License-Identifier: BSD-3-Clause
% The one door to all demos.
function files = kelvane_demo(name, folder)
  demos = all_demos();
  files = {};
  if nargin < 1
    rows = [{demos.name}; {demos.what}];
    fprintf('%-11s %s\n', rows{:});
  else
    name = one_of(name, [{demos.name}, {'all'}], 'kelvane:demo', 'demo');
    if ~strcmp(name, 'all')
      demos = demos(strcmp(name, {demos.name}));
    end
    pictures = unique([demos.pictures]);
    if nargin < 2
      folder = tempname();
      make_private_folder(folder);
      tidying = onCleanup(@() remove_if_empty(folder)); %#ok<NASGU>
    else
      folder = checked_folder(folder, pictures);
    end
    run_demos({demos.name}, folder);
    files = fullfile(folder, pictures);
  end
  if nargout == 0
    clear files
  end
end

% Their names, what they show, and the pictures that they save.
function demos = all_demos()
  list = {'chessboard', 'six photographs of a chessboard, refined with four rotation types', ...
          {'chessboard_all_types.png', 'chessboard_convergence.png', 'chessboard_corners.png'}
          'photograph', 'a chessboard''s lines in its photograph, before and after a refinement', {'photograph.png'}
          'types', 'the seven rotation types for pixels racing on one view', {'chessboard_all_types.png'}
          'outliers', 'a fifth of the corners in wrong places, with and without a robust loss', {'outliers.png'}
          'matches', '60 % of the corners mistaken for each other, and no start', {'matches.png'}
          'bearings', 'a wide-angle camera, some directions more than 90 degrees off its axis', {'bearings.png'}
          'colmap', 'a whole COLMAP model, read, refined on all processors and written back', {'colmap.png'}
          'convergence', 'the seven rotation types for pixels on six photographs of a chessboard', {'convergence_of_types.png'}
          'conventions', 'the frames, the image and directions, drawn from one pose', ...
          {'conventions_bearings.png', 'conventions_frames.png', 'conventions_pixels.png'}};
  demos = struct('name', list(:, 1), 'what', list(:, 2), 'pictures', list(:, 3));
end

% A folder that the user names, made where it is not there; an error before anything is written where a picture is in it.
function folder = checked_folder(folder, pictures)
  folder = checked_text(folder, 'folder');
  there = pictures(cellfun(@(name) exist(fullfile(folder, name), 'file') ~= 0, pictures));
  if ~isempty(there)
    error('kelvane:demo', 'No picture is replaced, and %s holds %s. Remove it, or name another folder.', folder, ...
          strjoin(there, ', '));
  end
  ensure_folder(folder);
end

function remove_if_empty(folder)
  [~, ~] = rmdir(folder);
end

function run_demos(names, folder)
  examples = folder_of_examples();
  added = isempty(strfind([pathsep(), path(), pathsep()], [pathsep(), examples, pathsep()])); %#ok<STREMP>
  if added
    addpath(examples, '-end');
    restoring = onCleanup(@() rmpath(examples)); %#ok<NASGU>
  end
  current = get(0, 'currentfigure');
  returning = onCleanup(@() set(0, 'currentfigure', current)); %#ok<NASGU>
  for k = 1:numel(names)
    fprintf('--- %s\n', names{k});
    feval([names{k}, '_demo'], folder);
  end
end

% Beside this folder in the project, within it in a package.
function folder = folder_of_examples()
  here = fileparts(mfilename('fullpath'));
  places = {fullfile(fileparts(here), 'examples'), fullfile(here, 'examples')};
  for k = 1:2
    folder = places{k};
    if exist(fullfile(folder, 'chessboard_demo.m'), 'file')
      return;
    end
  end
  error('kelvane:demo', 'The folder examples, which holds the demos, is neither beside %s nor in it.', here);
end

%!error <'bearing' is not a demo. Did you mean 'bearings'> kelvane_demo('bearing')
%!error <demo must be a text, .* class cell> kelvane_demo({})
%!error <name of the folder is empty> kelvane_demo('types', '')
%!error <folder must be a text; this is of class double> kelvane_demo('types', 3)

%!demo
%! kelvane_demo()
