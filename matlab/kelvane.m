% KELVANE  Camera pose refinement for MATLAB and GNU Octave: its functions by theme.
%
%   kelvane()
%
%   Shows this list, as help kelvane does.
%
% Refinement
%   kelvane_refine         - Refine a camera pose until it is still, with weights, robust losses and the uncertainty of the result.
%   kelvane_estimate       - Find a camera pose without a start, from points and observations many of which may be wrong.
%   kelvane_batch          - Refine many camera poses, on all processors or machines.
%   kelvane_mex            - Refine a camera pose from 3D points and their observations.
%
% Files
%   kelvane_read_colmap    - Read a COLMAP model as one refinement problem for each image.
%   kelvane_read_bal       - Read a file of Bundle Adjustment in the Large as one refinement problem for each camera.
%   kelvane_write_colmap   - Write a COLMAP model with refined poses.
%   kelvane_write_bal      - Write a file of Bundle Adjustment in the Large with refined poses.
%   kelvane_write_csv      - Write the results of a batch as a table.
%
% Pictures and demos
%   kelvane_plot           - Draw a refinement: residuals before and after, RMS by iteration, and the camera in the scene.
%   kelvane_demo           - List and run the demonstrations.
%
% Poses and predictions
%   kelvane_pose           - Convert camera poses between forms and frames.
%   kelvane_project        - Where a camera sees points, and how that changes with its pose.
%
% Lenses
%   kelvane_camera         - Describe a camera with its lens, in the words of COLMAP, OpenCV, MATLAB or BAL.
%   kelvane_undistort      - Remove the lens from pixels: ideal pixels, or directions.
%   kelvane_distort        - Where a camera with its lens sees ideal pixels or directions.
%
% Rotation types
%   kelvane_types          - The rotation types: what a search vector holds and what is predicted from it.
%   kelvane_check_gradient - Compare the derivatives in kelvane_mex with differences of its prediction, at your own pose.
%
% See also kelvane_refine, kelvane_estimate, kelvane_demo.

% SPDX-License-Identifier: BSD-3-Clause
% Octave knows no Contents.m, so the list is the help of a function.
function kelvane()
  help('kelvane');
end
