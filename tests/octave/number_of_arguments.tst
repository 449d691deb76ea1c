% SPDX-License-Identifier: BSD-3-Clause
% How many inputs and outputs a call may have.

%!function text = usage(num_inputs)
%!  text = report(1742, [sprintf('3 to 6 inputs required. Got %d Arguments should be: \n', num_inputs), ...
%!    '(1) a vector of 9/10 camera parameters (r1,r2,r3(,r4),t1,t2,t3, k11,k13,k23). The first 6/7 constitute the ', ...
%!    'search vector x, ther others are constant intrinsics', "\n", ...
%!    '(2) a matrix of 3d points', "\n", ...
%!    '(3) a matrix of 2d points', "\n", ...
%!    '(4) a vector of stopping criteria (max_iters, min_x_step, min_y_step, use_finite_difference) optional', ...
%!    '(5) a flag indicating rotation type (0=aau, 1=aan, 2=qu, 3=qn,   10=aau-bv, 11=aan-bv, 12=qu-bv,   ', ...
%!    '-1=qu,aau,aan, -2=aau,qu,aan,  -3=aan,qu,aau) optional, default=0', "\n", ...
%!    '(6) a vector of weights for the various equations (most useful for hybrid representation, or confidence of ', ...
%!    'points) optional']);
%!endfunction

%!test  % too few inputs show the usage
%! inputs = valid_inputs();
%! for n = 0:2
%!   assert(caught(inputs(1:n)), usage(n));
%! end

%!test  % too many inputs show the usage
%! assert(caught([valid_inputs(), {1}]), usage(7));
%! assert(caught([valid_inputs(), valid_inputs()]), usage(12));

%!test  % inputs are counted before anything else is looked at
%! assert(caught({'x', {}}), usage(2));
%! assert(caught({}, 0), usage(0));
%! assert(caught(cell(1, 7), 2), usage(7));

%!test  % exactly one output
%! assert(caught(valid_inputs(), 0), report(1756, '1 output required. Got 0'));
%! assert(caught(valid_inputs(), 2), report(1756, '1 output required. Got 2'));

%!test  % outputs are counted before the inputs are looked at
%! assert(caught({'x', {}, @sin}, 0), report(1756, '1 output required. Got 0'));
%! assert(caught(with(5, 4), 2), report(1756, '1 output required. Got 2'));

%!test  % three, four, five and six inputs are accepted
%! inputs = valid_inputs();
%! for n = 3:6
%!   assert(size(kelvane_mex(inputs{1:n})), [1, 6]);
%! end
