// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points behind a lens for what every 64-bit x86 has, and the choice among all variants.
#include "pose_refinement/lens_kernels.h"

#include "pose_refinement/lens_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Lens_kernels lens_kernels_avx2;
extern const Lens_kernels lens_kernels_avx512;

const Lens_kernels& lens_kernels(Instruction_set set) {
  return set == Instruction_set::avx512 ? lens_kernels_avx512
         : set == Instruction_set::avx2 ? lens_kernels_avx2
                                        : lens_kernels_of_width<2>;
}

}  // namespace kelvane
