% SPDX-License-Identifier: BSD-3-Clause
% Stands for MATLAB's class of that name: a rotation and a translation that map y = R * x + Translation'.
classdef rigidtform3d
  properties
    R = eye(3);
    Translation = [0, 0, 0];
  end
  methods
    function object = rigidtform3d(R, translation)
      object.R = R;
      object.Translation = translation;
    end
  end
end
