// SPDX-License-Identifier: BSD-3-Clause
// The loops over points, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "camera_pose/camera.h"
#include "least_squares/instruction_set.h"

namespace kelvane {

/// Points are whole groups of 3 doubles a point. Results have one place per group and output: eight values of output 0,
/// then eight of output 1, and so on; column c of a Jacobian is at columns + c * stride. Results are aligned to a cache
/// line. In a last group of fewer than eight points the other places become zero, whatever fills it up.
struct Point_kernels {
  /// Rows by a twist (v, omega) of the camera frame, six columns, and the prediction in a seventh: pixels (u, v)
  /// (docs/derivations.md, Eq. 48), or K p undivided (Eq. 49). A point at depth 0 gives infinities or NaN.
  void (*pixel_rows)(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                     std::size_t stride);
  void (*bearing_rows)(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                       std::size_t stride);
  /// The pixel rows as pairs, see Triangle::absorb_pairs: -f / z in column 0, which has one place for each point, four
  /// columns, and the prediction in a sixth.
  void (*pixel_pairs)(const double* points, std::size_t num_points, const Camera& camera, double* columns,
                      std::size_t stride);

  /// The predictions alone.
  void (*predict_pixels)(const double* points, std::size_t num_points, const Camera& camera, double* values);
  void (*predict_bearings)(const double* points, std::size_t num_points, const Camera& camera, double* values);

  /// Rows by forward differences, n columns, and the prediction in another.
  void (*pixel_differences)(const double* points, std::size_t num_points, const Moved_cameras& cameras, double* columns,
                            std::size_t stride);
  void (*bearing_differences)(const double* points, std::size_t num_points, const Moved_cameras& cameras,
                              double* columns, std::size_t stride);

  /// Rows by the parameters of the rotation and t, n + 3 columns (docs/derivations.md, Eqs. 21 to 23).
  void (*pixel_rows_by_parameters)(const double* points, std::size_t num_points, const Projection& projection,
                                   double* columns, std::size_t stride);
  void (*bearing_rows_by_parameters)(const double* points, std::size_t num_points, const Projection& projection,
                                     double* columns, std::size_t stride);

  /// Turns the predictions v into what is left of observations y, which are items of 2 (pixels) or 3 (bearings)
  /// doubles: y - v. Returns the sum of its squares.
  double (*subtract_pixels)(const double* observations, std::size_t num_groups, double* values);
  double (*subtract_bearings)(const double* observations, std::size_t num_groups, double* values);
};

/// The set must be available.
const Point_kernels& point_kernels(Instruction_set set);

}  // namespace kelvane
