% SPDX-License-Identifier: BSD-3-Clause
% The length of a step in a scaled problem below which rounding may decide whether the cost falls: it changes by about the
% square of that.
function length_of_step = hidden_by_rounding()
  length_of_step = 1e-6;
end
