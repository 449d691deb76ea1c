// SPDX-License-Identifier: BSD-3-Clause
// An intrinsic matrix as plain numbers.
#pragma once

#include <algorithm>

#include "camera_pose/camera.h"
#include "fw_tools/matrix.h"

namespace kelvane {

/// The upper left 3 by 3 entries; those that the matrix does not have are zero.
struct Entries_of_matrix {
  double K[3][3] = {};

  explicit Entries_of_matrix(const fw::matrix<double>& matrix) {
    for (int i = 0; i < std::min(matrix.get_dim1(), 3); ++i) {
      std::copy_n(matrix[static_cast<unsigned int>(i)], std::min(matrix.get_dim2(), 3), K[i]);
    }
  }

  /// What Jacobians read of it: [f 0 cx; 0 f cy; 0 0 1].
  Intrinsics simple() const { return {K[0][0], K[0][2], K[1][2]}; }
};

}  // namespace kelvane
