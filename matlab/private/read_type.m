% SPDX-License-Identifier: BSD-3-Clause
% The rotation type of a refinement: an element of kelvane_types() that observes what there is. which is a number, a short
% name, one of the words for the rotation that serve pixels and bearings alike, or [] for the rotation vector.
function type = read_type(which, bearing)
  words = {'rotation vector', 'axis and angle', 'quaternion'};
  if isempty(which)
    which = words{1};
  end
  if ~isnumeric(which)
    types = kelvane_types();
    which = one_of(which, [words, {types.name}], 'kelvane:rotationType', 'rotation type');
  end
  if any(strcmp(which, words))
    which = find(strcmp(which, words)) - 1 + 10 * bearing;
  end
  type = kelvane_types(which);
  if type.bearing ~= bearing
    kinds = {'pixels', 'bearing vectors'};
    error('kelvane:typeMismatch', 'Rotation type %d (%s) predicts %s, but the observations are %s.', type.number, ...
          type.name, kinds{1 + type.bearing}, kinds{1 + bearing});
  end
end
