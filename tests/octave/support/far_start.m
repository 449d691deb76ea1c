% SPDX-License-Identifier: BSD-3-Clause
% A pose struct far off from another: turned about a random axis by up to 60 degrees, moved by up to half the distance to
% the mean of the points, both evenly spread. Takes its numbers from rand and randn, which the caller has seeded.
function start = far_start(pose, points)
  axis = randn(3, 1);
  way = randn(3, 1);
  turn = axis / norm(axis) * rand() * pi / 3;
  start = pose;
  start.rotation = pose.rotation * expm([0, -turn(3), turn(2); turn(3), 0, -turn(1); -turn(2), turn(1), 0]);
  start.centre = pose.centre + way / norm(way) * rand() * norm(pose.centre - mean(points, 2)) / 2;
end
