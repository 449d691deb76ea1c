// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points for what every 64-bit x86 has, and the choice among all variants.
#include "camera_pose/point_kernels.h"

#include "camera_pose/point_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Point_kernels point_kernels_avx2;
extern const Point_kernels point_kernels_avx512;

const Point_kernels& point_kernels(Instruction_set set) {
  return set == Instruction_set::avx512 ? point_kernels_avx512
         : set == Instruction_set::avx2 ? point_kernels_avx2
                                        : point_kernels_of_width<2>;
}

}  // namespace kelvane
