% SPDX-License-Identifier: BSD-3-Clause
% The text of a file; an error when it cannot be read.
function text = text_of_file(file)
  stream = fopen(file, 'r');
  if stream < 0
    error('kelvane:file', '%s cannot be read: there is no such file, or no leave to open it.', file);
  end
  text = fread(stream, Inf, 'uint8=>char')';
  fclose(stream);
end
