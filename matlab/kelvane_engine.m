% KELVANE_ENGINE  The compiled engine behind kelvane_refine and its like, not for users.
%
%   Its inputs and outputs are as the functions beside it need them, and may change with every version.
%
%   See also kelvane_refine, kelvane_batch, kelvane_project, kelvane_pose.

% SPDX-License-Identifier: BSD-3-Clause
% Help of the compiled function, which takes precedence over this file in the same folder.
function varargout = kelvane_engine(varargin) %#ok<STOUT>
  error('kelvane:notBuilt', ['The compiled function %s (.mex or .mexa64) is not on the path. Build it by ' ...
        'kelvane_build, or by "cmake --preset release" and "cmake --build --preset release" and then addpath the folder ' ...
        'build/release, so that it comes before this one.'], 'kelvane_engine');
end
