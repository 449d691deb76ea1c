% SPDX-License-Identifier: BSD-3-Clause
% An error about a line of a file; the rest are a format and its values.
function file_error(file, line, varargin)
  error('kelvane:file', '%s, line %d: %s', file, line, sprintf(varargin{:}));
end
