// SPDX-License-Identifier: BSD-3-Clause
// The poses from which a camera sees three points in three given directions.
#pragma once

#include "pose_refinement/pose.h"

namespace kelvane {

inline constexpr int max_poses_of_three_points = 4;

/// Their number, 0 to 4, for three points and the unit directions in the camera frame in which they are seen. None
/// where the points lie on a line or two directions are the same. The distances of the points from the camera solve
/// Grunert's equations (1841), as rays that two cones share, and are polished by Newton's steps (docs/derivations.md,
/// Eqs. 69 to 73).
int poses_of_three_points(const double (&points)[3][3], const double (&directions)[3][3],
                          Pose (&poses)[max_poses_of_three_points]);

}  // namespace kelvane
