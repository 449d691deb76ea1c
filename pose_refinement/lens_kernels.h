// SPDX-License-Identifier: BSD-3-Clause
// The loops over points that are seen through a lens, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "camera_pose/camera.h"
#include "cameras/lens.h"
#include "least_squares/instruction_set.h"

namespace kelvane {

/// As those of a pinhole (point_kernels.h, sight_kernels.h). Only the place of the camera counts, K is the lens's.
/// Behind the last point everything is zero. Where there is no image the residual is NaN and its derivatives are zero.
struct Lens_kernels {
  /// Observed minus seen, whole groups of two rows.
  void (*residuals)(const double* points, std::size_t num_points, const Camera& camera, const Lens& lens,
                    const double* observed, double* values);
  /// The same in column 6, and the derivatives of what is seen by a twist (v, omega) of the camera frame before it
  /// (docs/derivations.md, Eq. 68).
  void (*rows)(const double* points, std::size_t num_points, const Camera& camera, const Lens& lens,
               const double* observed, double* columns, std::size_t stride);
};

/// The set must be available.
const Lens_kernels& lens_kernels(Instruction_set set);

}  // namespace kelvane
