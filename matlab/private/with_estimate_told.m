% SPDX-License-Identifier: BSD-3-Clause
% The info of a refinement from an estimate, with all observations as they were read, and a message that tells of both.
function info = with_estimate_told(info, estimate)
  info.observations = estimate.observations;
  info.message = sprintf('Started from an estimate with which %d of %d points agree. %s', estimate.num_inliers, ...
                         numel(estimate.inliers), info.message);
end
