% SPDX-License-Identifier: BSD-3-Clause
% A refinement by lsqnonlin of Octave's optim package, limited to ten iterations; [] without the package.
function refine = peer_of_optim()
  refine = [];
  if isempty(pkg('list', 'optim'))
    return;
  end
  warning('off', 'Octave:shadowed-function', 'local');  % a package that it needs replaces functions of the core
  pkg('load', 'optim');
  options = optimset('Jacobian', 'on', 'MaxIter', 10, 'TolFun', 0);
  refine = @(camera, points, pixels) lsqnonlin(@(x) pixel_residuals(x, camera(7:9), points, pixels), ...
                                               camera(1:6)', [], [], options)';
end
