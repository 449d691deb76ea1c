% KELVANE_DEMO  List and run the demonstrations.
%
%   kelvane_demo()
%   kelvane_demo(name)
%   kelvane_demo(name, folder)
%   files = kelvane_demo(...)
%
%   Without a name they are listed. name is one of the list, or 'all'. Each takes a few seconds, prints what it finds and
%   saves pictures (PNG) in folder, by default the folder kelvane_demo below the one for temporary files; a folder that is
%   not there is made. The demos lie in the folder examples, one function each: read them.
%
%   files is a 1 x n cell with the pictures that were saved.
%
%   'colmap' takes a model of your own too: see help colmap_demo, once the folder examples is on the path.
%
%   Example:
%     kelvane_demo()
%   Output:
%     chessboard  six photographs of a chessboard, refined with four rotation types
%     types       the seven rotation types for pixels racing on one view
%     outliers    a fifth of the corners in wrong places, with and without a robust loss
%     bearings    a wide-angle camera, some directions more than 90 degrees off its axis
%     colmap      a whole COLMAP model, read from its files and refined on two processes
%     convergence all ten rotation types on six photographs of a chessboard
%     conventions the frames, the image and directions, drawn from one pose
%
%   See also kelvane_refine, kelvane_batch, kelvane_plot, kelvane_mex.

% SPDX-License-Identifier: BSD-3-Clause
% The one door to all demos.
function files = kelvane_demo(name, folder)
  demos = {'chessboard', 'six photographs of a chessboard, refined with four rotation types'
           'types', 'the seven rotation types for pixels racing on one view'
           'outliers', 'a fifth of the corners in wrong places, with and without a robust loss'
           'bearings', 'a wide-angle camera, some directions more than 90 degrees off its axis'
           'colmap', 'a whole COLMAP model, read from its files and refined on two processes'
           'convergence', 'all ten rotation types on six photographs of a chessboard'
           'conventions', 'the frames, the image and directions, drawn from one pose'};
  files = {};
  if nargin < 1
    rows = demos';
    fprintf('%-11s %s\n', rows{:});
    return_nothing = nargout == 0;
  else
    chosen = {one_of(name, [demos(:, 1)', {'all'}], 'kelvane:demo', 'demo')};
    if strcmp(chosen{1}, 'all')
      chosen = demos(:, 1)';
    end
    if nargin < 2
      folder = fullfile(tempdir(), 'kelvane_demo');
    end
    files = run_demos(chosen, checked_text(folder, 'folder'));
    return_nothing = nargout == 0;
  end
  if return_nothing
    clear files
  end
end

function files = run_demos(names, folder)
  if ~exist(folder, 'dir')
    mkdir(folder);
  end
  examples = folder_of_examples();
  added = isempty(strfind([pathsep(), path(), pathsep()], [pathsep(), examples, pathsep()])); %#ok<STREMP>
  if added
    addpath(examples, '-end');
    restoring = onCleanup(@() rmpath(examples)); %#ok<NASGU>
  end
  for k = 1:numel(names)
    fprintf('--- %s\n', names{k});
    feval([names{k}, '_demo'], folder);
  end
  pictures = dir(fullfile(folder, '*.png'));
  files = fullfile(folder, {pictures.name});
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
%!error <folder must be a text; this is of class double> kelvane_demo('types', 3)
