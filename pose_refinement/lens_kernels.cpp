// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points behind a lens, two doubles at a time, and the choice among all variants.
#include "pose_refinement/lens_kernels.h"

#include "pose_refinement/lens_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Lens_kernels lens_kernels_avx2;
extern const Lens_kernels lens_kernels_avx512;

const Lens_kernels& lens_kernels([[maybe_unused]] Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return lens_kernels_avx512;
  if (set == Instruction_set::avx2) return lens_kernels_avx2;
#endif
  return lens_kernels_of_width<2>;
}

}  // namespace kelvane
