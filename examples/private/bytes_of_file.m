% SPDX-License-Identifier: BSD-3-Clause
% All bytes of a file in a row, none where it cannot be read.
function bytes = bytes_of_file(file)
  bytes = zeros(1, 0, 'uint8');
  stream = fopen(file, 'r');
  if stream >= 0
    bytes = fread(stream, Inf, '*uint8')';
    fclose(stream);
  end
end
