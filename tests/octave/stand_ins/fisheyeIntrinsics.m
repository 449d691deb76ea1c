% SPDX-License-Identifier: BSD-3-Clause
% Stands for MATLAB's class of that name, as far as it is looked at.
classdef fisheyeIntrinsics
  properties
    MappingCoefficients = [800, 0, 0, 0];
    DistortionCenter = [320, 240];
    ImageSize = [480, 640];
  end
end
