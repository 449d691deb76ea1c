% SPDX-License-Identifier: BSD-3-Clause
% Input 5, the rotation type.

%!function text = not_a_scalar(size_and_class)
%!  text = report(1764, ['Double scalar expected as rotation type, got ', size_and_class]);
%!endfunction

%!function text = invalid(value)
%!  text = report(1773, ['Rotation type must be from: (0=aau, 1=aan, 2=qu, 3=qn,   10=aau-bv, 11=aan-bv, ', ...
%!    '12=qu-bv,   -1=qu,aau,aan, -2=aau,qu,aan,  -3=aan,qu,aau), got an invalid value of ', value]);
%!endfunction

%!test  % another class than double
%! values = {single(0), int32(0), uint8(0), true, 'a', {0}, struct('a', 0), @sin, 1:0 == 1};
%! texts = {'1 by 1 of single', '1 by 1 of int32', '1 by 1 of uint8', '1 by 1 of logical', '1 by 1 of char', ...
%!          '1 by 1 of cell', '1 by 1 of struct', '1 by 1 of function_handle', '1 by 0 of logical'};
%! for i = 1:numel(values)
%!   assert(caught(with(5, values{i})), not_a_scalar(texts{i}));
%! end

%!test  % sparse and complex arrays
%! assert(caught(with(5, sparse(0))), not_a_scalar('1 by 1 of double'));
%! assert(caught(with(5, complex(2, 0))), not_a_scalar('1 by 1 of double'));
%! assert(caught(with(5, 2i)), not_a_scalar('1 by 1 of double'));

%!test  % other shapes than a row
%! assert(caught(with(5, [])), not_a_scalar('0 by 0 of double'));
%! assert(caught(with(5, zeros(1, 0))), not_a_scalar('1 by 0 of double'));
%! assert(caught(with(5, zeros(3, 1))), not_a_scalar('3 by 1 of double'));
%! assert(caught(with(5, zeros(2, 2))), not_a_scalar('2 by 2 of double'));
%! assert(caught(with(5, zeros(3, 2, 2))), not_a_scalar('3 by 4 of double'));

%!test  % of a row the first element counts
%! inputs = valid_inputs(2);
%! x = kelvane_mex(inputs{1:5});
%! for row = {[2, 99, NaN], reshape([2, 4, 4, 4], 1, 2, 2), 2:5}
%!   assert(kelvane_mex(inputs{1:4}, row{1}), x);
%! end

%!test  % a fraction is cut off
%! inputs = valid_inputs(2);
%! assert(kelvane_mex(inputs{1:4}, 2.7), kelvane_mex(inputs{1:4}, 2));
%! inputs = valid_inputs(0);
%! for type = [-0.9, 0.999, -0]
%!   assert(kelvane_mex(inputs{1:4}, type), kelvane_mex(inputs{1:4}, 0));
%! end

%!test  % -3.5 counts as -3
%! inputs = valid_inputs(1);
%! inputs{4}(4) = 1;
%! assert(kelvane_mex(inputs{1:4}, -3.5), kelvane_mex(inputs{1:4}, -3));

%!test  % a value that is no type
%! values = [4, 9, 13, -4, 4.5, -1e10, 1e300, NaN, Inf, -Inf, 2147483648, 4294967296];
%! texts = {'4', '9', '13', '-4', '4.5', '-1e+10', '1e+300', 'nan', 'inf', '-inf', '2.14748e+09', '4.29497e+09'};
%! for i = 1:numel(values)
%!   assert(caught(with(5, values(i))), invalid(texts{i}));
%! end

%!test  % without the type it is 0
%! inputs = valid_inputs();
%! assert(kelvane_mex(inputs{1:4}), kelvane_mex(inputs{1:5}));

%!test  % all ten types run, in closed form and by finite differences
%! types = [0, 1, 2, 3, 10, 11, 12, -1, -2, -3];
%! like = [0, 1, 2, 3, 0, 1, 2, 2, 0, 1];  % a type with the same rotation entries
%! for i = 1:10
%!   inputs = valid_inputs(like(i));
%!   inputs(5:6) = {types(i), []};
%!   if types(i) >= 10  % bearings want the identity as K
%!     inputs{1}(end - 2:end) = [1, 0, 0];
%!     inputs{3} = [inputs{3} / 1000; ones(1, 4)];
%!   end
%!   for flag = 0:1
%!     inputs{4}(4) = flag;
%!     x = kelvane_mex(inputs{1:5});
%!     assert(size(x), size(inputs{1}) - [0, 3]);
%!     assert(all(isfinite(x)));
%!     assert(norm(x - inputs{1}(1:end - 3)) > 1e-6);
%!   end
%! end
