% SPDX-License-Identifier: BSD-3-Clause
% An object of a class without classdef, which holds a matrix.
function object = old_style(value)
  object = class(struct('value', value), 'old_style');
end
