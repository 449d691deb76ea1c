// SPDX-License-Identifier: BSD-3-Clause
// Where a camera sees points, and how that changes with its pose.
#pragma once

#include <cstddef>

#include "pose_refinement/camera_model.h"
#include "pose_refinement/pose.h"

namespace kelvane {

/// Of n points X, Y, Z behind each other: `seen` gets the pixels u, v, or the unit directions x, y, z, of each; NaN
/// where the depth of a pixel is nothing but rounding. `jacobian`, unless null, gets their derivatives by [w; dt] as in
/// Refine_result::covariance: six columns, behind each other, of all the numbers in `seen`. `depths`, unless null, gets
/// the distances along the optical axis, negative behind the camera.
void project(const Pose& pose, const Camera_model& camera, const double* points, std::size_t n, double* seen,
             double* jacobian, double* depths);

}  // namespace kelvane
