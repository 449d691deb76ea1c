% SPDX-License-Identifier: BSD-3-Clause
% The element of the results of kelvane_batch for one problem, an error caught in it.
function row = refined_row(problem, options)
  row = struct('name', problem.name, 'pose', [], 'info', [], 'exitflag', NaN, 'rms_before', NaN, 'rms_after', NaN, ...
               'error', '', 'identifier', '');
  try
    if isfield(problem, 'options') && ~isempty(problem.options)
      options = parse_options('kelvane_refine', options, {problem.options});
    end
    [row.pose, row.info] = kelvane_refine(problem.start, problem.points, problem.observations, problem.intrinsics, options);
    row.exitflag = row.info.exitflag;
    row.rms_before = row.info.rms_before;
    row.rms_after = row.info.rms_after;
  catch caught
    row.error = caught.message;
    row.identifier = caught.identifier;
  end
end
