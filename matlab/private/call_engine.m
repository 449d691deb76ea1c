% SPDX-License-Identifier: BSD-3-Clause
% What kelvane_engine answers. Its errors come without its name in front, which is not the one that the user called.
function varargout = call_engine(varargin)
  try
    [varargout{1:max(1, nargout)}] = kelvane_engine(varargin{:});
  catch problem
    message = problem.message;  % of any bytes, which regexprep would refuse
    name = 'kelvane_engine: ';
    if strncmp(message, name, numel(name))
      message = message(numel(name) + 1:end);
    end
    error(struct('message', message, 'identifier', problem.identifier));
  end
end
