% SPDX-License-Identifier: BSD-3-Clause
% Stands for MATLAB's current pool where its workers are threads.
function pool = gcp()
  pool = parallel.ThreadPool();
end
