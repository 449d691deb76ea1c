% SPDX-License-Identifier: BSD-3-Clause
% What kelvane_engine wrote of a pose in a form; for 'rigidtform3d' that is a rotation and a translation, of no NaN.
function value = written_pose(value, form)
  if strcmp(form, 'rigidtform3d')
    if ~exist('rigidtform3d', 'class') && ~exist('rigidtform3d', 'file')
      error('kelvane:noClass', 'This release has no class rigidtform3d. Ask for the form ''matrix4x4'' instead.');
    end
    if any(isnan(value{1}(:)))
      value = [];
      return;
    end
    value = feval('rigidtform3d', value{1}, reshape(value{2}, 1, 3));
  end
end
