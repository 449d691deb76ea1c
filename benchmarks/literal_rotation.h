// SPDX-License-Identifier: BSD-3-Clause
// Rotation matrices and their derivatives for the literal reference, written independently of the module.
#pragma once

#include <opencv2/core.hpp>

namespace bench {

/// R, camera to world, and dR[j] = dR / dr_j for as many rotation entries as there are.
struct Literal_rotation {
  cv::Matx33d R;
  cv::Matx33d dR[4];
};

Literal_rotation rotation_of_vector(const double* r);
/// Axis of any length but zero, then the angle.
Literal_rotation rotation_of_angle_axis(const double* a);
/// Any length but zero, scalar last.
Literal_rotation rotation_of_quaternion(const double* q);

/// The quaternion and the angle-axis of a rotation vector with their derivatives by it.
struct Literal_conversion {
  cv::Vec4d value;
  cv::Matx<double, 4, 3> derivative;
};
Literal_conversion vector_to_quaternion(const double* r);
Literal_conversion vector_to_angle_axis(const double* r);

}  // namespace bench
