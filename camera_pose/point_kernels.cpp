// SPDX-License-Identifier: BSD-3-Clause
// Which variant of the kernels belongs to which instruction set.
#include "camera_pose/point_kernels.h"

// Each in a source of its own, compiled for its instruction set.
extern const Point_kernels point_kernels_sse2;
extern const Point_kernels point_kernels_avx2;
extern const Point_kernels point_kernels_avx512;

const Point_kernels& point_kernels(fw::Instruction_set set) {
  switch (set) {
    case fw::Instruction_set::avx512:
      return point_kernels_avx512;
    case fw::Instruction_set::avx2:
      return point_kernels_avx2;
    case fw::Instruction_set::sse2:
      break;
  }
  return point_kernels_sse2;
}
