// SPDX-License-Identifier: BSD-3-Clause
// The kernels over residuals for what every 64-bit x86 has, and the choice among all variants.
#include "pose_refinement/sight_kernels.h"

#include "pose_refinement/sight_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Sight_kernels sight_kernels_avx2;
extern const Sight_kernels sight_kernels_avx512;

const Sight_kernels& sight_kernels(Instruction_set set) {
  return set == Instruction_set::avx512 ? sight_kernels_avx512
         : set == Instruction_set::avx2 ? sight_kernels_avx2
                                        : sight_kernels_of_width<2>;
}

}  // namespace kelvane
