% SPDX-License-Identifier: BSD-3-Clause
% Prints the bits of what kelvane_mex returns for every type, with few points and with many.
function print_bits()
  r = {[0.3 -0.5 0.2], [0.48 -0.81 0.32 0.6], [0.1 -0.2 0.3 0.9]};
  forms = struct('type', {-1, -2, -3, 0, 1, 2, 3, 10, 11, 12}, 'r', r([3 1 2 1 2 3 3 1 2 3]));
  for n = [6, 101]
    k = 1:n;
    points = [sin(7 * k); cos(3 * k); sin(k) / 2];
    for form = forms
      bearing = form.type >= 10;
      intrinsics = {[500 320 240], [1 0 0]};
      observations = {[300 * sin(5 * k); 200 * cos(2 * k)], [sin(k); cos(k); 2 + sin(k)]};
      camera = [form.r, 0.1 -0.2 -4, intrinsics{1 + bearing}];
      x = kelvane_mex(camera, points, observations{1 + bearing}, [1 0 0 0], form.type);
      printf('%d %d:%s\n', n, form.type, sprintf(' %s', num2hex(x', 'cell'){:}));
    end
  end
end
