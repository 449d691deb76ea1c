% SPDX-License-Identifier: BSD-3-Clause
% A property of an object, or a field of a struct with the same names; an error that names the class expected otherwise.
function value = property_of(object, name, class_name)
  try
    value = object.(name);
  catch
    error('kelvane:property', 'Expected an object of class %s or a struct like it; this %s has no %s.', class_name, ...
          class(object), name);
  end
end
