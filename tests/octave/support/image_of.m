% SPDX-License-Identifier: BSD-3-Clause
% What a value is, to the bit, as text; of cells, structs and others class and size alone.
function image = image_of(value)
  image = [class(value), sprintf(' %d', size(value), issparse(value), iscomplex(value)), ' '];
  if isnumeric(value) || ischar(value) || islogical(value)
    contents = full(value(:)');
    if islogical(contents)
      contents = char(contents);
    end
    image = [image, char(typecast(real(contents), 'uint8')), char(typecast(imag(contents), 'uint8'))];
  end
end
