// SPDX-License-Identifier: BSD-3-Clause
// A plane through the points, and a pose on its other side.
#include "pose_refinement/mirrored.h"

#include <algorithm>

#include "least_squares/singular_values.h"

namespace kelvane {

/// With M = I - 2 n n' for the plane's normal n, p = R' (X - t) and M X = X in the plane: -p = -R' M (X - M t).
Pose mirrored(const Pose& pose, const Observed_points& data) {
  double scatter[3][4] = {};  // and a right-hand side of zero
  for (const Sights& sights : data.sights()) {
    for (const double* X = sights.points; X != sights.points + 3 * sights.num_points; X += 3) {
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) scatter[i][j] += X[i] * X[j];
      }
    }
  }
  Singular_values values;
  values.decompose(&scatter[0][0], 3, 3);
  std::size_t least = 0;
  for (std::size_t k = 1; k < 3; ++k) least = values.sigma(k) < values.sigma(least) ? k : least;
  const double* n = values.v(least);
  Pose other;
  for (int i = 0; i < 3; ++i) {
    const double* t = pose.centre;
    other.centre[i] = t[i] - 2.0 * n[i] * (n[0] * t[0] + n[1] * t[1] + n[2] * t[2]);
    for (int j = 0; j < 3; ++j) {
      const auto& R = pose.rotation;
      other.rotation[i][j] = 2.0 * n[i] * (n[0] * R[0][j] + n[1] * R[1][j] + n[2] * R[2][j]) - R[i][j];
    }
  }
  return other;
}

}  // namespace kelvane
