% SPDX-License-Identifier: BSD-3-Clause
% Does what verb says, 'refine' or 'estimate', to some problems on threads of this process: a row for each. options are those of all problems, which count where
% problems.options is empty throughout. states, if any, are where others have left them. The interpreter is back at least
% every 0.2 s, so that Ctrl-C works.
function [rows, batch] = rows_by_threads(verb, problems, options, batch, states)
  seconds = 0.2;
  inputs = [{problems.start}; {problems.points}; {problems.observations}; {problems.intrinsics}];
  if nargin < 5
    states = cell(1, numel(problems));
  end
  waiting = 1:numel(problems);
  while ~isempty(waiting)
    slice = waiting(1:min(end, batch.size_of_slice));
    own = {problems(slice).options};
    if isempty(own{1})
      own = options;
    end
    some = inputs(:, slice);
    cells = {some(1, :), some(2, :), some(3, :), some(4, :)};
    cells = cells(1 + strcmp(verb, 'estimate'):4);
    found = call_engine(verb, cells{:}, own, states(slice), seconds, batch.Threads);
    found = refined_rows(found, some(1, :), some(2, :), some(3, :), some(4, :));
    begun = slice(1:numel(found));
    rows(begun) = found;
    [states{begun}] = found.state;
    is_left = ~cellfun('isempty', states(begun));
    waiting = [begun(is_left), waiting(numel(begun) + 1:end)];
    % As many as can be begun in the time: the others of a slice are read in vain.
    batch.size_of_slice = numel(begun);
    if numel(begun) == numel(slice)
      batch.size_of_slice = 2 * numel(begun);
    end
  end
end
