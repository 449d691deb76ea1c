// SPDX-License-Identifier: BSD-3-Clause
// The intrinsic matrix as plain numbers.
#pragma once

#include "fw_tools/matrix.h"

/// K, 3 by 3 (pixels), row by row.
struct Intrinsics {
  double K[3][3] = {};  ///< K[i][j] is row i, column j

  /// All entries zero.
  Intrinsics() = default;
  /// Entries that the matrix does not have are zero.
  explicit Intrinsics(const fw::matrix<double>& matrix);
  /// One focal length for both axes, no skew: [f 0 cx; 0 f cy; 0 0 1].
  Intrinsics(double focal_length, double cx, double cy);

  /// Whether it has the form of the constructor above.
  bool is_simple() const { return *this == Intrinsics(K[0][0], K[0][2], K[1][2]); }
  /// Whether all nine entries are equal.
  bool operator==(const Intrinsics& other) const;

  /// The same as a matrix, for printing.
  fw::matrix<double> matrix() const;
};
