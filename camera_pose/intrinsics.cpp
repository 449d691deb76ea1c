// SPDX-License-Identifier: BSD-3-Clause
// The intrinsic matrix as plain numbers, and back.
#include "camera_pose/intrinsics.h"

#include <algorithm>

Intrinsics::Intrinsics(const fw::matrix<double>& matrix) {
  for (int i = 0; i < std::min(matrix.get_dim1(), 3); ++i) {
    const double* row = matrix[static_cast<unsigned int>(i)];
    std::copy_n(row, std::min(matrix.get_dim2(), 3), K[i]);
  }
}

Intrinsics::Intrinsics(double focal_length, double cx, double cy)
    : K{{focal_length, 0.0, cx}, {0.0, focal_length, cy}, {0.0, 0.0, 1.0}} {}

bool Intrinsics::operator==(const Intrinsics& other) const {
  return std::equal(&K[0][0], &K[0][0] + 9, &other.K[0][0]);
}

fw::matrix<double> Intrinsics::matrix() const {
  fw::matrix<double> result(3, 3);
  for (unsigned int i = 0; i < 3; ++i) std::copy_n(K[i], 3, result[i]);
  return result;
}
