% SPDX-License-Identifier: BSD-3-Clause
% Inputs 1 to 3: the camera parameters, the points and the observations.

%!shared other_classes
%! other_classes = {single(1), int16(1), true, 'text', {1, 2}, struct('a', {1, 2}), @sin, @(x) x, sparse(eye(3)), 1i, ...
%!                  complex(ones(3, 4), 0), inputParser()};

%!test  % input 1 of another class
%! for value = other_classes
%!   assert(caught(with(1, value{1})), report(1790, 'Input 1 should be an double vector'));
%! end

%!test  % input 1 that is no vector
%! assert(caught(with(1, zeros(3, 3))), report(1793, 'Input 1 should be a vector, instead found sizes of 3 by 3'));
%! assert(caught(with(1, [])), report(1793, 'Input 1 should be a vector, instead found sizes of 0 by 0'));
%! assert(caught(with(1, zeros(3, 3, 2))), report(1793, 'Input 1 should be a vector, instead found sizes of 3 by 6'));

%!test  % input 1 of a wrong length
%! text = ['Input 1 should be a vector of %d camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23), ', ...
%!         'instead it had %d'];
%! for rows = [0, 8, 10]
%!   assert(caught(with(1, zeros(rows, 1))), report(1797, sprintf(text, 9, rows)));
%! end
%! assert(caught(with(1, zeros(1, 0))), report(1797, sprintf(text, 9, 0)));
%! for type = [1, 2, 3, 11, 12, -1, -3]
%!   assert(caught(with(1, zeros(1, 9), 5, type)), report(1797, sprintf(text, 10, 9)));
%! end
%! for type = [0, 10, -2]
%!   assert(caught(with(1, zeros(1, 10), 5, type)), report(1797, sprintf(text, 9, 10)));
%! end

%!test  % input 1 as a column is read in storage order
%! for type = 0:3
%!   inputs = valid_inputs(type);
%!   x = kelvane_mex(inputs{:});
%!   inputs{1} = inputs{1}';
%!   assert(kelvane_mex(inputs{:}), x);
%! end

%!test  % input 1 as a row of three dimensions
%! inputs = valid_inputs();
%! assert(kelvane_mex(reshape(inputs{1}, 1, 3, 3), inputs{2:end}), kelvane_mex(inputs{:}));

%!test  % input 2 of another class
%! for value = other_classes
%!   assert(caught(with(2, value{1})), report(1804, 'Input 2 should be an double matrix'));
%! end

%!test  % input 2 without three rows
%! text = 'Input 2 should be a matrix of 3D points, with size N by 3. instead size of %d by %d was passed';
%! for rows_columns = {[4, 3], [2, 4], [0, 0], [0, 3], [1, 3]}
%!   assert(caught(with(2, zeros(rows_columns{1}))), report(1807, sprintf(text, rows_columns{1})));
%! end
%! assert(caught(with(2, zeros(4, 3, 2))), report(1807, sprintf(text, 4, 6)));

%!test  % input 3 of another class
%! for value = other_classes
%!   assert(caught(with(3, value{1})), report(1818, 'Input 3 should be an double matrix'));
%! end

%!test  % input 3 of a wrong size, both sizes columns first
%! text = ['Input 3 should be a matrix of observations (pixel/bearing vecs), with size 4 by %d. ', ...
%!         'instead size of %d by %d was passed'];
%! assert(caught(with(3, zeros(2, 5))), report(1822, sprintf(text, 2, 5, 2)));
%! assert(caught(with(3, zeros(4, 2))), report(1822, sprintf(text, 2, 2, 4)));
%! assert(caught(with(3, zeros(3, 4))), report(1822, sprintf(text, 2, 4, 3)));
%! assert(caught(with(3, [])), report(1822, sprintf(text, 2, 0, 0)));
%! for type = [10, 11, 12]
%!   camera = zeros(1, 9 + (type > 10));
%!   assert(caught(with(1, camera, 5, type)), report(1822, sprintf(text, 3, 4, 2)));
%! end
%! for type = [-1, -2, -3]
%!   camera = zeros(1, 9 + (type ~= -2));
%!   assert(caught(with(1, camera, 3, zeros(3, 4), 5, type)), report(1822, sprintf(text, 2, 4, 3)));
%! end

%!test  % arrays that Octave stores in a short form are read whole
%! inputs = valid_inputs();
%! camera = [0, 0, 0, 0, 0, -5, 500, 320, 240];
%! x = kelvane_mex(camera, full(eye(3)), [320, 300, 310; 200, 230, 240]);
%! assert(kelvane_mex(camera, eye(3), [320, 300, 310; 200, 230, 240]), x);
%! permutation = eye(3)(:, [1, 2, 3]);
%! assert(kelvane_mex(camera, permutation, [320, 300, 310; 200, 230, 240]), x);
%! assert(kelvane_mex(inputs{1:5}, 1:8), kelvane_mex(inputs{1:5}, [1, 2, 3, 4, 5, 6, 7, 8]));
