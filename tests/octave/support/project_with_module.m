% SPDX-License-Identifier: BSD-3-Clause
% A folder that looks like the project's after a build, whatever folder the module under test was built in: links to all
% that the project holds, the module in build/release, and in the folder model a COLMAP model of the demos' making. tmp is
% for temporary files. removing takes all of it away when it is cleared.
function [folder, removing] = project_with_module()
  project = fileparts(fileparts(which('kelvane_refine')));
  folder = tempname();
  mkdir(folder);
  removing = onCleanup(@() remove_links_and_files(folder));
  mkdir(folder, 'build');
  mkdir(folder, 'tmp');
  for entry = dir(project)'
    if ~any(strcmp(entry.name, {'.', '..', 'build', '.git'}))
      symlink(fullfile(project, entry.name), fullfile(folder, entry.name));
    end
  end
  symlink(fileparts(which('kelvane_mex')), fullfile(folder, 'build', 'release'));
  start = cd(fullfile(project, 'examples', 'private'));
  back = onCleanup(@() cd(start));
  mkdir(folder, 'model');
  write_house_model(fullfile(folder, 'model'));
end

% Links first, so that nothing behind them is touched.
function remove_links_and_files(folder)
  for place = {folder, fullfile(folder, 'build')}
    for entry = dir(place{1})'
      file = fullfile(place{1}, entry.name);
      if S_ISLNK(lstat(file).mode)
        unlink(file);
      end
    end
  end
  confirm_recursive_rmdir(false, 'local');
  rmdir(folder, 's');
end
