// SPDX-License-Identifier: BSD-3-Clause
// Which peers there are: CMake says what it found.
#include "benchmarks/peers/peers.h"

namespace bench {

std::vector<Entry> found_peers() {
  return {
#ifdef KELVANE_HAS_CERES
      tiny_solver(),
      ceres_solver(),
#endif
#ifdef KELVANE_HAS_OPENCV_CALIB3D
      opencv_lm(),
      opencv_vvs(),
#endif
#ifdef KELVANE_HAS_NATIVE_TINY_SOLVER
      tiny_solver_for_this_cpu(),
#endif
  };
}

std::vector<std::string> missing_peers() {
  return {
#ifndef KELVANE_HAS_CERES
      "Ceres was not found (Debian package libceres-dev): without Ceres and TinySolver.",
#endif
#ifndef KELVANE_HAS_OPENCV_CALIB3D
      "OpenCV's calib3d was not found (Debian package libopencv-calib3d-dev): without solvePnPRefineLM and -VVS.",
#endif
  };
}

}  // namespace bench
