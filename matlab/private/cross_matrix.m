% SPDX-License-Identifier: BSD-3-Clause
% The matrix of the cross product: cross_matrix(a) * p is the cross product of a and p.
function S = cross_matrix(a)
  S = [0, -a(3), a(2); a(3), 0, -a(1); -a(2), a(1), 0];
end
