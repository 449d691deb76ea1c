% SPDX-License-Identifier: BSD-3-Clause
% Makes a folder where it is not there; an error that names it where that cannot be done.
function ensure_folder(folder)
  if isempty(folder)
    error('kelvane:folder', 'The name of the folder is empty.');
  elseif ~exist(folder, 'dir')
    [made, message] = mkdir(folder);
    if ~made
      error('kelvane:folder', 'The folder %s cannot be made: %s.', folder, lower(message));
    end
  end
end
