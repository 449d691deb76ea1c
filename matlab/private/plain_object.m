% SPDX-License-Identifier: BSD-3-Clause
% A struct with the properties of an object of one of MATLAB's classes that kelvane_engine reads; anything else as it is.
function value = plain_object(value, class_name)
  if isnumeric(value) || isstruct(value) || iscell(value)
    return;
  end
  switch class_name
    case 'rigidtform3d'
      names = {'R', 'Translation'};
    case 'cameraIntrinsics'
      names = {'FocalLength', 'PrincipalPoint', 'Skew', 'RadialDistortion', 'TangentialDistortion'};
  end
  try
    for name = names
      plain.(name{1}) = value.(name{1});
    end
    value = plain;
  catch  % no such object, as kelvane_engine will say
  end
end
