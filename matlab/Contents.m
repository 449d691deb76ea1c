% kelvane: camera pose refinement for MATLAB and GNU Octave
%
% Refinement
%   kelvane_refine         - Refine a camera pose until it is still, with weights, robust losses and the uncertainty of the result.
%   kelvane_mex            - Refine a camera pose from 3D points and their observations.
%
% Poses and predictions
%   kelvane_pose           - Convert camera poses between forms and frames.
%   kelvane_project        - Where a camera sees points, and how that changes with its pose.
%
% Rotation types
%   kelvane_types          - The rotation types: what a search vector holds and what is predicted from it.
%   kelvane_check_gradient - Compare the derivatives in kelvane_mex with differences of its prediction, at your own pose.
%
% SPDX-License-Identifier: BSD-3-Clause
