% SPDX-License-Identifier: BSD-3-Clause
% Iterates a scaled problem until it is still. options are those of kelvane_refine; watch(entry, k) is called with an entry
% of the history at the start (k = 0) and after each iteration, and stops by returning true. result has the exitflag, the
% history and the problem with the scale of the loss that it ended with. An entry has the state, its cost and the motion
% that led to it.
function result = iterate(problem, options, watch)
  scale = start_of_scale(problem, options.LossScale);
  problem.scale = scale.value;
  entry = struct('state', problem.start, 'cost', residuals_at(problem, problem.start), 'motion', zeros(6, 1));
  history = entry;
  exitflag = -3 * ~isfinite(entry.cost);
  stopped = watch(entry, 0);
  while ~stopped && exitflag == 0 && numel(history) <= options.MaxIterations
    [entry, step] = one_iteration(problem, entry);
    exitflag = verdict(history(end), entry, step, options);
    if exitflag > 0 || ~scale.final
      [scale, exitflag] = next_scale(problem, entry.state, scale, exitflag);
      problem.scale = scale.value;
      entry.cost = residuals_at(problem, entry.state);
    end
    history(end + 1) = entry; %#ok<AGROW>
    stopped = watch(entry, numel(history) - 1);
  end
  if exitflag == 0 && stopped
    exitflag = -1;
  end
  result = struct('exitflag', exitflag, 'history', history, 'problem', problem);
end

% The entry after one step of the module, turned into Gauss and Newton's for the cost where the two differ, and held back
% where the cost would rise; without a motion where no part of the step lowers it. step is the length of the whole step.
function [next, step] = one_iteration(problem, entry)
  whole = motion_between(entry.state, module_step(problem, entry.state));
  candidates = {whole};
  C = step_correction(problem, entry.state);
  if ~isempty(C)
    candidates = {C * whole, whole};
  end
  step = norm(candidates{1});
  next = entry;
  next.motion = zeros(6, 1);
  % What rounding may add to the cost does not hold back a step that is too short to change it by more.
  limit = entry.cost * (1 + 1e-13 * (step <= hidden_by_rounding()));
  fraction = 1;
  while ~any(next.motion) && fraction > 1e-6
    for i = 1:numel(candidates)
      [next, limit] = better_of(problem, entry, fraction * candidates{i}, next, limit);
    end
    fraction = fraction / 2;
  end
end

function [next, limit] = better_of(problem, entry, motion, next, limit)
  state = moved_by(entry.state, motion);
  cost = residuals_at(problem, state);
  if cost < limit
    next = struct('state', state, 'cost', cost, 'motion', motion);
    limit = cost;
  end
end

% Why to stop, as the exit flags of kelvane_refine; 0 to go on.
function exitflag = verdict(before, after, step, options)
  if step <= options.StepTolerance
    exitflag = 1;
  elseif step <= hidden_by_rounding() && after.cost >= before.cost
    exitflag = 2;
  elseif ~any(after.motion)
    exitflag = -2;
  elseif options.FunctionTolerance > 0 && before.cost - after.cost < options.FunctionTolerance * before.cost
    exitflag = 3;
  else
    exitflag = 0;
  end
end

% The scale of a robust loss starts where the residuals are and comes down with them, so that a start far off is not taken
% for a set of outliers. It is final where it no longer does, or at the one that the user wants.
function scale = start_of_scale(problem, wanted)
  without_loss = strcmp(problem.loss.name, 'none');
  scale = struct('value', Inf, 'wanted', wanted, 'final', without_loss, 'settled', without_loss);
  if ~without_loss
    scale.value = lowered(problem, problem.start, scale);
  end
end

function [scale, exitflag] = next_scale(problem, state, scale, exitflag)
  if scale.settled
    return;
  end
  value = lowered(problem, state, scale);
  comes_down = value < 0.95 * scale.value;
  scale.final = ~comes_down;
  if comes_down
    scale.value = value;
    exitflag = 0;  % whatever the verdict was, it was on another cost
  elseif ~isempty(scale.wanted)
    scale.settled = true;
    exitflag = exitflag * (scale.value == scale.wanted);
    scale.value = scale.wanted;
  end
end

function value = lowered(problem, state, scale)
  [~, ~, s] = residuals_at(problem, state);
  if isempty(scale.wanted)
    least = 1e-8 * max(abs(problem.observations(:)));  % exact data leave nothing but rounding
  else
    least = scale.wanted;
  end
  value = max(least, min(scale.value, problem.loss.tuning * noise_of_lengths(s)));
end
