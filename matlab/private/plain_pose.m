% SPDX-License-Identifier: BSD-3-Clause
% What kelvane_engine reads of a pose in a form, or '' for the one that its class tells, and that form.
function [value, form] = plain_pose(value, form)
  if isempty(form) && isa(value, 'rigidtform3d')
    form = 'rigidtform3d';
  end
  if strcmp(form, 'rigidtform3d')
    value = plain_object(value, form);
  end
end
