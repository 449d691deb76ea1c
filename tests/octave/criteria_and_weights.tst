% SPDX-License-Identifier: BSD-3-Clause
% Inputs 4 and 6: the stopping criteria and the weights.

%!function text = wrong_criteria(line, rows, columns)
%!  text = report(line, sprintf(['Input 4 should be a vector of stopping criteria, with 4 elements. ', ...
%!                               'instead size of %d by %d was passed'], rows, columns));
%!endfunction

%!function text = wrong_weights(num_equations, size_and_class)
%!  text = report(1868, sprintf('Double vector of length %d expected as weightings, got %s', num_equations, ...
%!                              size_and_class));
%!endfunction

%!test  % input 4 of another class
%! for value = {single(1:4), int8(1:4), true(1, 4), 'text', {1, 2, 3, 4}, struct('a', {1, 2, 3, 4}), @sin, ...
%!              sparse(1:4), [1, 0, 0, 1i], {}}
%!   assert(caught(with(4, value{1})), report(1831, 'Input 4 should be an double vector'));
%! end

%!test  % input 4 that is no vector
%! assert(caught(with(4, zeros(2, 2))), wrong_criteria(1834, 2, 2));
%! assert(caught(with(4, [])), wrong_criteria(1834, 0, 0));
%! assert(caught(with(4, zeros(2, 2, 2))), wrong_criteria(1834, 2, 4));

%!test  % input 4 of a wrong length
%! assert(caught(with(4, zeros(1, 3))), wrong_criteria(1837, 1, 3));
%! assert(caught(with(4, zeros(5, 1))), wrong_criteria(1837, 5, 1));
%! assert(caught(with(4, zeros(1, 0))), wrong_criteria(1837, 1, 0));

%!test  % input 4 is checked in a call of four inputs
%! inputs = with(4, zeros(1, 3));
%! assert(caught(inputs(1:4)), wrong_criteria(1837, 1, 3));

%!test  % input 4 as a column
%! inputs = valid_inputs();
%! x = kelvane_mex(inputs{:});
%! inputs{4} = inputs{4}';
%! assert(kelvane_mex(inputs{:}), x);

%!test  % wrong weights are reported with size and class of the rotation type
%! for value = {ones(1, 7), ones(9, 1), ones(2, 4), [], single(1:8), sparse(1:8), (1:8) * 1i, {}, @sin, 'eight888', ...
%!              struct('a', {1, 2, 3, 4, 5, 6, 7, 8}), ones(8, 2)}
%!   assert(caught(with(6, value{1})), wrong_weights(8, '1 by 1 of double'));
%! end
%! assert(caught(with(5, [0, 1, 2], 6, ones(1, 7))), wrong_weights(8, '1 by 3 of double'));

%!test  % the number of weights is that of the equations
%! camera = zeros(1, 9);
%! assert(caught(with(5, -2, 6, ones(1, 8))), wrong_weights(24, '1 by 1 of double'));
%! assert(caught(with(1, camera, 3, ones(3, 4), 5, 10, 6, ones(1, 8))), wrong_weights(12, '1 by 1 of double'));

%!test  % weights as a column
%! inputs = valid_inputs(2);
%! inputs{6} = 1:8;
%! x = kelvane_mex(inputs{:});
%! inputs{6} = (1:8)';
%! assert(kelvane_mex(inputs{:}), x);

%!test  % weights of one change nothing, others do
%! inputs = valid_inputs(2);
%! x = kelvane_mex(inputs{1:5});
%! assert(kelvane_mex(inputs{:}), x);
%! assert(norm(kelvane_mex(inputs{1:5}, [1, 1, 1, 1, 1, 1, 3, 3]) - x) > 1e-8);
