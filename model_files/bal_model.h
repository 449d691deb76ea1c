// SPDX-License-Identifier: BSD-3-Clause
// Files of Bundle Adjustment in the Large: Agarwal, Snavely, Seitz, Szeliski 2010.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "model_files/model_file.h"

namespace kelvane {

/// One of the pixels. Both numbers count from 0.
struct Bal_observation {
  std::uint32_t camera = 0;  ///< in Bal_model::cameras
  std::uint32_t point = 0;   ///< in Bal_model::points
  double pixel[2] = {0, 0};  ///< from the middle of the image, y up
};

/// All that is in a file.
struct Bal_model {
  /// Rotation vector and translation, camera from world, focal length, two coefficients of radial distortion. The
  /// camera looks along -z, y up.
  std::vector<std::array<double, 9>> cameras;
  std::vector<std::array<double, 3>> points;  ///< world
  std::vector<Bal_observation> observations;  ///< in the file's order
  std::vector<std::size_t> pose_offsets;      ///< where each camera begins in the file
};

/// Reads a text of three numbers: of cameras, points and observations; the observations; the cameras; the points.
/// Throws File_error.
Bal_model read_bal(const Model_file& file);

}  // namespace kelvane
