% SPDX-License-Identifier: BSD-3-Clause
% Removes a file, where it is there. In Octave delete would take its name for a pattern.
function remove_file(file)
  if exist('OCTAVE_VERSION', 'builtin')
    [~, ~] = unlink(file);
  elseif exist(file, 'file')
    delete(file);
  end
end
