% SPDX-License-Identifier: BSD-3-Clause
% kelvane_check_gradient: units, far and near points, and the blocks of hybrid types.

%!function pose = some_pose()
%!  pose = kelvane_pose([0.3 -0.5 0.2, 0.1 -0.2 -4], 'rotation_vector', 'world_from_camera');
%!endfunction

%!function points = some_points()
%!  points = [-1 1 1 -1 0 0.5; -1 -1 1 1 0 0.3; 0 0.2 0 0.4 1 -0.5];
%!endfunction

%!test  % in any unit of length, far from the origin as well, for every type but 3
%! R = some_pose().rotation;
%! for unit = [1e-6, 1, 1e6, 1e9]
%!   for origin = {[0; 0; 0], [300; -700; 50]}
%!     pose = struct('rotation', R, 'centre', unit * (some_pose().centre + origin{1}));
%!     points = unit * (some_points() + origin{1});
%!     for type = kelvane_types()([1:3, 5:end])
%!       intrinsics = {[500 320 240], []};
%!       [e, J] = kelvane_check_gradient(pose, points, intrinsics{1 + type.bearing}, 'RotationType', type.number);
%!       assert(e, 0, 1e-9);
%!       if type.bearing
%!         by_centre = -kron(ones(6, 1), R');
%!       else
%!         [~, by_motion] = kelvane_project(pose, points, intrinsics{1});
%!         by_centre = kron(ones(type.blocks, 1), by_motion(:, 4:6));
%!       end
%!       assert(J(:, end - 2:end), by_centre, 1e-8 * max(abs(by_centre(:))));  % in the user's unit
%!     end
%!   end
%! end

%!test  % points near the camera and far from it, and almost beside it
%! R = some_pose().rotation;
%! points = R * [0.01 -3 40 200 1 -20; 0.02 2 -30 50 2 10; 0.03 0.1 90 9 0.05 700];
%! pose = struct('rotation', R, 'centre', [0; 0; 0]);
%! for type = [0, 1, 2]
%!   assert(kelvane_check_gradient(pose, points, [800 0 0], 'RotationType', type), 0, 1e-7);
%!   assert(kelvane_check_gradient(pose, points, [], 'RotationType', type + 10), 0, 1e-7);
%! end

%!test  % the blocks of a hybrid type are looked at one by one: here the quaternion's has the opposite sign
%! pose = kelvane_pose([-2.5 0.1 0.2, 3 0 3], 'rotation_vector', 'world_from_camera');
%! [e, J, numeric] = kelvane_check_gradient(pose, some_points(), [500 320 240], 'RotationType', -2);
%! assert(e > 1);
%! assert(J([1:12, 25:36], :), numeric([1:12, 25:36], :), 1e-8 * max(abs(numeric(:))));
%! assert(J(13:24, 1:3), -numeric(13:24, 1:3), 1e-8 * max(abs(numeric(:))));
