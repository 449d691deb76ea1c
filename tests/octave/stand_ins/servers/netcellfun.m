% SPDX-License-Identifier: BSD-3-Clause
% Stands for the function of Octave's package parallel that calls a function on servers: it calls it here.
function results = netcellfun(~, name, varargin)
  results = cellfun(name, varargin{:});
end
