// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction, two doubles at a time, and the choice among all variants.
#include "least_squares/reduction_kernels.h"

#include "least_squares/reduction_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Reduction_kernels reduction_kernels_avx2;
extern const Reduction_kernels reduction_kernels_avx512;

const Reduction_kernels& reduction_kernels([[maybe_unused]] Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return reduction_kernels_avx512;
  if (set == Instruction_set::avx2) return reduction_kernels_avx2;
#endif
  return reduction_kernels_of_width<2>;
}

}  // namespace kelvane
