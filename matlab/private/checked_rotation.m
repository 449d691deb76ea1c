% SPDX-License-Identifier: BSD-3-Clause
% The rotation matrix next to a given one, which may be off by what six printed digits leave; an error otherwise.
function R = checked_rotation(R, name)
  R = checked_numbers(R, name);
  if ~isequal(size(R), [3, 3])
    error('kelvane:size', '%s must be 3 x 3; this is %d x %d.', name, size(R, 1), size(R, 2));
  end
  deviation = max(max(abs(R' * R - eye(3))));
  if deviation > 1e-5
    error('kelvane:notRotation', ['%s is not a rotation: R'' * R differs from the identity by %.2g. ' ...
          'A scale must be divided out first.'], name, deviation);
  end
  if det(R) < 0
    error('kelvane:leftHanded', ['%s has the determinant -1: it mirrors. Both frames must be right-handed; ' ...
          'negate the axis that points the other way.'], name);
  end
  [U, ~, V] = svd(R);
  R = U * V';
end
