// SPDX-License-Identifier: BSD-3-Clause
// The kernels over residuals, two doubles at a time, and the choice among all variants.
#include "pose_refinement/sight_kernels.h"

#include "pose_refinement/sight_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Sight_kernels sight_kernels_avx2;
extern const Sight_kernels sight_kernels_avx512;

const Sight_kernels& sight_kernels([[maybe_unused]] Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return sight_kernels_avx512;
  if (set == Instruction_set::avx2) return sight_kernels_avx2;
#endif
  return sight_kernels_of_width<2>;
}

}  // namespace kelvane
