% kelvane: camera pose refinement for MATLAB and GNU Octave
%
% Refinement
%   kelvane_mex - Refine a camera pose from 3D points and their observations.
%
% SPDX-License-Identifier: BSD-3-Clause
