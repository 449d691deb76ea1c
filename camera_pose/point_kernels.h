// SPDX-License-Identifier: BSD-3-Clause
// The loops over points, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "camera_pose/projection.h"
#include "fw_tools/instruction_set.h"

/// `points` are groups as in Packed_points. Values go to one place per group and output: eight values of output 0, then
/// eight of output 1, and so on; rows of a Jacobian likewise, column c of them at columns + c * stride. Everything is
/// aligned to a cache line. In a last group of fewer than eight points the other places become zero.
struct Point_kernels {
  /// Pixels of the points through the projection matrix P: (u, v). A point at depth 0 gives infinities or NaN.
  void (*predict_pixels)(const double* points, std::size_t num_points, const double (&P)[3][4], double* values);
  /// P (X, 1)', three outputs, not divided by anything.
  void (*predict_bearings)(const double* points, std::size_t num_points, const double (&P)[3][4], double* values);

  /// du/dx and dv/dx, n_r + 3 columns (docs/derivations.md, Eqs. 21 and 22), and (u, v) itself in one more.
  void (*pixel_rows_3)(const double* points, std::size_t num_points, const Projection<3>& projection, double* columns,
                       std::size_t stride);
  void (*pixel_rows_4)(const double* points, std::size_t num_points, const Projection<4>& projection, double* columns,
                       std::size_t stride);
  /// dp1/dx, dp2/dx, dp3/dx, n_r + 3 columns (docs/derivations.md, Eq. 23), and p itself in one more.
  void (*bearing_rows_3)(const double* points, std::size_t num_points, const Projection<3>& projection, double* columns,
                         std::size_t stride);
  void (*bearing_rows_4)(const double* points, std::size_t num_points, const Projection<4>& projection, double* columns,
                         std::size_t stride);
};

/// The set must be available.
const Point_kernels& point_kernels(fw::Instruction_set set);
