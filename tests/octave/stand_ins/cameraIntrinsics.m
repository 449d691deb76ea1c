% SPDX-License-Identifier: BSD-3-Clause
% Stands for MATLAB's class of that name, as far as it is read.
classdef cameraIntrinsics
  properties
    FocalLength = [1, 1];
    PrincipalPoint = [0, 0];
    Skew = 0;
    RadialDistortion = [0, 0];
    TangentialDistortion = [0, 0];
  end
  methods
    function object = cameraIntrinsics(focal_length, principal_point, skew)
      object.FocalLength = focal_length;
      object.PrincipalPoint = principal_point;
      object.Skew = skew;
    end
  end
end
