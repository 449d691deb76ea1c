// SPDX-License-Identifier: BSD-3-Clause
// The check of four entries of K.
#include "camera_pose/bearing_intrinsics.h"

#include <algorithm>

#include "fw_tools/matrix.h"
#include "fw_tools/scalar_helpers.h"

namespace kelvane {

void check_bearing_intrinsics(const double (&K)[3][3]) {
  constexpr double tolerance = 0.0001;
  if (fw::eq(K[0][0], 1.0, tolerance) && fw::eq(K[1][1], 1.0, tolerance) && fw::eq(K[0][2], 0.0, tolerance) &&
      fw::eq(K[1][2], 0.0, tolerance)) {
    return;
  }
  fw::matrix<double> printed(3, 3);
  for (unsigned int i = 0; i < 3; ++i) std::copy_n(K[i], 3, printed[i]);
  fw::raise(site::bearing_intrinsics,
            fw::text("For bearing vectors, expected k to be identity, instead got ", printed));
}

}  // namespace kelvane
