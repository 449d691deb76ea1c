% SPDX-License-Identifier: BSD-3-Clause
% Problems of kelvane_batch from what kelvane_engine reads of a file, in a 1 x n struct array. form is that of the poses in
% the file.
function problems = view_problems(views, form)
  for told = views.warnings
    warning(['kelvane:', told{1}], '%s', told{2});
  end
  cameras = num2cell(views.cameras);
  sizes = {views.cameras.image_size};
  problems = struct('name', views.name, 'id', num2cell(views.id), 'start', starts_of(views.pose, form), ...
                    'points', views.points, 'observations', views.observations, ...
                    'intrinsics', cameras(views.camera), 'image_size', sizes(views.camera), ...
                    'point_ids', views.point_ids);
end

% Columns of a rotation and a centre as structs of kelvane_pose.
function starts = starts_of(columns, form)
  n = size(columns, 2);
  rotations = mat2cell(reshape(columns(1:9, :), 3, 3 * n), 3, 3 * ones(1, n));
  starts = num2cell(struct('rotation', rotations, 'centre', mat2cell(columns(10:12, :), 3, ones(1, n)), 'form', form, ...
                           'frame', 'camera_from_world'));
end
