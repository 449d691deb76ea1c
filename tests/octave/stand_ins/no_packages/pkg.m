% SPDX-License-Identifier: BSD-3-Clause
% Stands for Octave's pkg where no package is installed.
function pkg(varargin)
  error('pkg: the package %s is not installed', varargin{end});
end
