% KELVANE_TYPES  The rotation types: what a search vector holds and what is predicted from it.
%
%   kelvane_types()
%   types = kelvane_types()
%   type = kelvane_types(which)
%
%   Without an output the table is printed. which is a number or a name of the table, capitals or not.
%
%   types is a 1 x 10 struct array, type one of its elements, with the fields
%     number          what kelvane_mex takes: -3, -2, -1, 0, 1, 2, 3, 10, 11 or 12
%     name            its short name, 'aau' for 0
%     title           the rotation in words, 'rotation vector' for 0
%     representation  form of the rotation entries: 'rotation_vector', 'axis_angle' or 'quaternion_xyzw' of kelvane_pose
%     rotation_size   how many they are, 3 or 4
%     bearing         true where unit bearing vectors are observed, false for pixels
%     blocks          how often each equation is stacked: 3 for the hybrid types, otherwise 1
%     advice          when to take it
%
%   Example:
%     >> type = kelvane_types('aau-bv');
%     >> fprintf('type %d: %s, %d entries\n', type.number, type.title, type.rotation_size)
%     type 10: rotation vector, 3 entries
%
%
%   See also kelvane_mex, kelvane_check_gradient, kelvane_refine.

% SPDX-License-Identifier: BSD-3-Clause
% The table of rotation types, for programs and for people.
function result = kelvane_types(which)
  types = table_of_types();
  if nargin == 1
    result = types(index_of(which, types));
  elseif nargout == 1
    result = types;
  else
    fprintf('%6s  %-12s %-16s %8s  %-8s  %s\n', 'number', 'name', 'rotation', 'entries', 'observed', 'advice');
    observed = {'pixels', 'bearings'};
    for type = types
      fprintf('%6d  %-12s %-16s %8d  %-8s  %s\n', type.number, type.name, type.title, type.rotation_size, ...
              observed{1 + type.bearing}, type.advice);
    end
  end
end

function i = index_of(which, types)
  if isnumeric(which) && isscalar(which)
    i = find([types.number] == which);
    if isempty(i)
      error('kelvane:rotationType', 'There is no rotation type %g. The numbers are%s.', which, sprintf(' %d', types.number));
    end
  else
    name = one_of(which, {types.name}, 'kelvane:rotationType', 'rotation type');
    i = find(strcmp(name, {types.name}));
  end
end

function types = table_of_types()
  r = 'rotation_vector';
  a = 'axis_angle';
  q = 'quaternion_xyzw';
  rows = {
      0, 'aau',        'rotation vector',  r, 3, false, 1, 'the one to use'
      1, 'aan',        'axis and angle',   a, 4, false, 1, 'where the angle itself is wanted'
      2, 'qu',         'quaternion',       q, 4, false, 1, 'where quaternions are used anyway'
      3, 'qn',         'quaternion',       q, 4, false, 1, 'mostly diverges: not the derivative of its prediction'
     10, 'aau-bv',     'rotation vector',  r, 3, true,  1, 'the one to use for bearings'
     11, 'aan-bv',     'axis and angle',   a, 4, true,  1, 'as 1, for bearings'
     12, 'qu-bv',      'quaternion',       q, 4, true,  1, 'as 2, for bearings'
     -1, 'qu,aau,aan', 'quaternion',       q, 4, false, 3, 'three derivatives at once, to compare them'
     -2, 'aau,qu,aan', 'rotation vector',  r, 3, false, 3, 'three derivatives at once, to compare them'
     -3, 'aan,qu,aau', 'axis and angle',   a, 4, false, 3, 'three derivatives at once, to compare them'};
  fields = {'number', 'name', 'title', 'representation', 'rotation_size', 'bearing', 'blocks', 'advice'};
  types = cell2struct(rows, fields, 2)';
end

%!test  % every number leads to its own row
%! types = kelvane_types();
%! assert(sort([types.number]), [-3:3, 10:12]);
%! for type = types
%!   assert(kelvane_types(type.number), type);
%!   assert(kelvane_types(upper(type.name)), type);
%!   assert(type.rotation_size, 3 + ~strcmp(type.representation, 'rotation_vector'));
%!   assert(type.bearing, type.number >= 10);
%!   assert(type.blocks, 1 + 2 * (type.number < 0));
%! end

%!test  % the printed table has a line for each type
%! assert(numel(strfind(evalc('kelvane_types()'), "\n")), 11);

%!error <no rotation type 4> kelvane_types(4)
%!error <'quu' is not a rotation type. Did you mean 'qu'\?> kelvane_types('quu')
%!error <'xyz' is not a rotation type. There are 'aau', > kelvane_types('xyz')

%!demo
%! kelvane_types()
%! type = kelvane_types('qu')
