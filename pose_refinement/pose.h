// SPDX-License-Identifier: BSD-3-Clause
// A camera pose, and the forms in which others write it.
#pragma once

#include <array>

namespace kelvane {

/// Which way a rotation Q and a translation s map.
enum class Pose_frame {
  world_from_camera,  ///< X = Q p + s: s is the camera centre
  camera_from_world   ///< p = Q X + s, as in OpenCV and COLMAP
};

/// A camera in its world: a point X has the camera-frame coordinates p = rotation' (X - centre). The camera looks along
/// its z axis, x to the right and y down.
struct Pose {
  double rotation[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};  ///< camera to world, row by row
  double centre[3] = {0, 0, 0};                               ///< world frame and units
};

/// A rotation vector (unit axis times angle, radians) and a translation.
struct Rotation_vector_pose {
  std::array<double, 3> r;  ///< radians
  std::array<double, 3> s;  ///< world units
};
/// A quaternion (x, y, z, w), scalar last, and a translation. OpenCV has no quaternions, COLMAP puts the scalar first.
struct Quaternion_pose {
  std::array<double, 4> q;  ///< (x, y, z, w)
  std::array<double, 3> s;  ///< world units
};
/// [Q | s], row by row.
using Matrix_pose = std::array<std::array<double, 4>, 3>;

/// The pose of what is written in another form. Each throws std::invalid_argument where an entry is not finite; a
/// quaternion may have any length but zero, and a matrix has to be a rotation to five digits, of which the nearest is
/// taken.
Pose pose_of(const Rotation_vector_pose& value, Pose_frame frame);
/// See above.
Pose pose_of(const Quaternion_pose& value, Pose_frame frame);
/// See above.
Pose pose_of(const Matrix_pose& value, Pose_frame frame);

/// A pose as a rotation vector no longer than pi.
Rotation_vector_pose rotation_vector_of(const Pose& pose, Pose_frame frame);
/// A pose as a unit quaternion with w of 0 or more.
Quaternion_pose quaternion_of(const Pose& pose, Pose_frame frame);
/// A pose as a matrix.
Matrix_pose matrix_of(const Pose& pose, Pose_frame frame);

/// The pose with the rotation next to the given one. Throws std::invalid_argument, with a sentence, where an entry is
/// not finite or the matrix is further than 1e-5 from a rotation.
Pose checked(const Pose& pose);

}  // namespace kelvane
