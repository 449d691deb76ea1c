% SPDX-License-Identifier: BSD-3-Clause
% Makes a folder that nobody else may enter. One that is there already, or a link of somebody else's, is an error.
function make_private_folder(folder)
  if exist('OCTAVE_VERSION', 'builtin')
    before = umask(77);  % octal
    restoring = onCleanup(@() umask(before));
  end
  [made, message] = mkdir(folder);
  if ~made || ~isempty(message)
    error('kelvane:folder', 'The folder %s cannot be made: %s.', folder, lower(message));
  end
  if ~exist('OCTAVE_VERSION', 'builtin')
    fileattrib(folder, '-w -x', 'g o');
  end
end
