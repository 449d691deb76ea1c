% SPDX-License-Identifier: BSD-3-Clause
% Writes bytes or a text to a file: beside it, compared, and then renamed, so that the file holds all of them or is as it was.
% A link of that name is replaced, not followed.
function write_whole(file, bytes)
  [~, random] = fileparts(tempname());
  part = [file, '.', random];
  stream = fopen(part, 'w');
  if stream < 0
    error('kelvane:demo', '%s cannot be written: no file can be made in its folder.', file);
  end
  removing = onCleanup(@() remove_file(part));
  fwrite(stream, bytes);
  fclose(stream);
  if ~isequal(bytes_of_file(part), uint8(bytes))
    error('kelvane:demo', '%s cannot be written: there is no room for it.', file);
  end
  if exist('OCTAVE_VERSION', 'builtin')
    [failed, message] = rename(part, file);  % movefile would take the names for patterns
  else
    [done, message] = movefile(part, file, 'f');
    failed = ~done;
  end
  if failed
    error('kelvane:demo', '%s cannot be written: %s.', file, message);
  end
end
