% SPDX-License-Identifier: BSD-3-Clause
% Writes a text to a file, byte for byte.
function write_text(file, text)
  stream = fopen(file, 'w');
  fwrite(stream, text);
  fclose(stream);
end
