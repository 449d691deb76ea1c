// SPDX-License-Identifier: BSD-3-Clause
// Small motions of a camera.
#pragma once

#include "pose_refinement/pose.h"

namespace kelvane {

double determinant(const double (&R)[3][3]);
/// Puts the rotation next to a matrix in its place. Throws as checked() does, with the name of the matrix.
void take_nearest_rotation(double (&R)[3][3], const char* name);
/// Brings a matrix near a rotation to the nearest one but for the square of its distance.
void make_orthogonal(double (&R)[3][3]);

/// The pose after the twist (v, omega) of the camera frame: R exp [omega]x and t + R v.
Pose moved_by(const Pose& pose, const double* twist);

bool are_same(const Pose& a, const Pose& b);

/// The angle of the turn from one pose to another, at most pi, and the length of the shift.
double angle_between(const Pose& a, const Pose& b);
double length_between(const Pose& a, const Pose& b);

}  // namespace kelvane
