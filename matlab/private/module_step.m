% SPDX-License-Identifier: BSD-3-Clause
% The state to which one call of kelvane_mex moves a state of a scaled problem: one Gauss-Newton step on the target
% q + v / d with the weights sqrt(d), whose only fixed points are the stationary ones of the cost (Eq. 38).
function next = module_step(problem, state)
  type = problem.type;
  [q, v, d] = descent_system(problem, state);
  target = q;
  target(d > 0) = q(d > 0) + v(d > 0) ./ d(d > 0);
  weights = kron(ones(1, type.blocks), sqrt(d(:))');
  x = [rotation_entries(type.representation, state.R), state.t'];
  x = stepped(type, x, [problem.focal, 0, 0], problem.points, target, weights, problem.finite_difference);
  next.R = rotation_of_entries(type.representation, x(1:type.rotation_size));
  next.t = x(end - 2:end)';
end
