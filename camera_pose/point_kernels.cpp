// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points, two doubles at a time, and the choice among all variants.
#include "camera_pose/point_kernels.h"

#include "camera_pose/point_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Point_kernels point_kernels_avx2;
extern const Point_kernels point_kernels_avx512;

const Point_kernels& point_kernels([[maybe_unused]] Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return point_kernels_avx512;
  if (set == Instruction_set::avx2) return point_kernels_avx2;
#endif
  return point_kernels_of_width<2>;
}

}  // namespace kelvane
