% SPDX-License-Identifier: BSD-3-Clause
% What a call returns, on photographs of a chessboard whose best poses are known from other solvers.

%!test  % every pixel type but 3 reaches the known optimum of every view
%! for id = 1:6
%!   view = chessboard_view(id);
%!   for type = [0, 1, 2, -1, -2, -3]
%!     x = refined_until_still(view, type);
%!     best = view.optimum{representation_of(type)};
%!     if representation_of(type) == 3
%!       x(1:4) = x(1:4) / norm(x(1:4));
%!     elseif representation_of(type) == 2
%!       x(1:3) = x(1:3) / norm(x(1:3));
%!     end
%!     distance = norm(best(end - 2:end)' - mean(view.points, 2));
%!     assert(x(1:end - 3), best(1:end - 3), 1e-8);
%!     assert(x(end - 2:end), best(end - 2:end), 1e-8 * distance);
%!   end
%! end

%!test  % ten iterations without criteria, three with them for type 0, one for another type
%! view = chessboard_view(6);
%! view.pixels = view.pixels + 40 * sin(reshape(1:108, 2, 54));  % large residuals: the iteration converges slowly
%! call = @(x, varargin) kelvane_mex([x, view.intrinsics], view.points, view.pixels, varargin{:});
%! after = zeros(11, 6);
%! after(1, :) = call(view.start{1}, [0, 0, 1e38, 0]);
%! for k = 2:11
%!   after(k, :) = call(after(k - 1, :), [0, 0, 1e38, 0]);
%! end
%! assert(sqrt(sum(diff(after).^2, 2)) > 1e-5);  % so each of the following tells one number of iterations
%! assert(call(view.start{1}, [50, 0, -10000, 0]), after(3, :), 1e-12);
%! assert(call(view.start{1}), after(10, :), 1e-12);
%! for type = 1:3
%!   x = call(view.start{representation_of(type)}, [50, 0, -10000, 0], type);
%!   assert(call(view.start{representation_of(type)}, [50, 0, 1e38, 0], type), x, 1e-12);
%!   assert(norm(call(x, [50, 0, -10000, 0], type) - x) > 1e-6);
%! end

%!test  % the first criterion is not used
%! view = chessboard_view(2);
%! for type = 0:3
%!   camera = [view.start{representation_of(type)}, view.intrinsics];
%!   x = kelvane_mex(camera, view.points, view.pixels, [1, 0, -10000, 0], type);
%!   for max_iters = [0, 50, -3, NaN, Inf]
%!     assert(kelvane_mex(camera, view.points, view.pixels, [max_iters, 0, -10000, 0], type), x, 1e-12);
%!   end
%! end

%!test  % a step below min_x_step ends the call and is not taken
%! view = chessboard_view(1);
%! camera = [view.start{1}, view.intrinsics];
%! % The first step is measured from the start.
%! assert(kelvane_mex(camera, view.points, view.pixels, [0, 1000, 0, 0]), view.start{1});
%! % Other types make one iteration and measure nothing.
%! camera = [view.start{3}, view.intrinsics];
%! x = kelvane_mex(camera, view.points, view.pixels, [0, 1000, 1e38, 0], 2);
%! assert(norm(x - view.start{3}) > 1e-2);

%!test  % four inputs count as type 0
%! view = chessboard_view(3);
%! camera = [view.start{1}, view.intrinsics];
%! x = kelvane_mex(camera, view.points, view.pixels, [0, 0, -10000, 0]);
%! assert(x, kelvane_mex(camera, view.points, view.pixels, [0, 0, -10000, 0], 0), 1e-12);
%! assert(norm(x - kelvane_mex(camera, view.points, view.pixels, [0, 0, 1e38, 0], 0)) > 1e-6);

%!test  % finite differences: forward, by 0.01 for the centre, and 0.314 for a quaternion, 0.0314 for other rotations
%! view = chessboard_view(1);
%! rotation_steps = [0.0314, 0.0314, 0.314, 0.314];
%! for type = 0:3
%!   camera = [view.start{representation_of(type)}, view.intrinsics];
%!   expected = difference_step(view, type, rotation_steps(type + 1), 0.01);
%!   for flag = [1, -1, NaN, 1e-300]
%!     x = kelvane_mex(camera, view.points, view.pixels, [0, 0, 1e38, flag], type);
%!     assert(x, expected, 1e-9);
%!   end
%! end

%!test  % one closed-form step is the limit of small differences, for the types 0 to 2
%! view = chessboard_view(3);
%! for type = 0:2
%!   camera = [view.start{representation_of(type)}, view.intrinsics];
%!   x = kelvane_mex(camera, view.points, view.pixels, [0, 0, 1e38, 0], type);
%!   assert(x, difference_step(view, type, 1e-7, 1e-7), 1e-5);
%! end

%!test  % by finite differences the hybrid types move as well
%! view = chessboard_view(1);
%! for type = [-1, -2, -3]
%!   start = view.start{representation_of(type)};
%!   x = kelvane_mex([start, view.intrinsics], view.points, view.pixels, [0, 0, 0, 1], type);
%!   assert(size(x), size(start));
%!   assert(all(isfinite(x)));
%!   assert(norm(x - start) > 1e-3);
%! end

%!test  % type 3 wanders off: its Jacobian is not the derivative of its prediction
%! view = chessboard_view(5);
%! x = view.start{3};
%! for k = 1:10
%!   x = kelvane_mex([x, view.intrinsics], view.points, view.pixels, [0, 0, 0, 0], 3);
%! end
%! rms = @(x) sqrt(sum(sum((predicted_pixels(view, 3, x) - view.pixels).^2)) / 54);
%! assert(rms(x) > 10 * rms(view.start{3}));
