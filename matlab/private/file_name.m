% SPDX-License-Identifier: BSD-3-Clause
% The name of a file or folder as the system knows it: ~ is the user's own folder. what names it in an error.
function name = file_name(name, what)
  name = checked_text(name, what);
  if isempty(name)  % which would be the current folder, or a file in the root
    error('kelvane:file', 'The name of the %s is empty.', what);
  end
  if strcmp(name, '~') || strncmp(name, '~/', 2)
    name = [getenv('HOME'), name(2:end)];
  end
end
