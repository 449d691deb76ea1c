// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction for what every 64-bit x86 has, and the choice among all variants.
#include "least_squares/reduction_kernels.h"

#include "least_squares/reduction_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Reduction_kernels reduction_kernels_avx2;
extern const Reduction_kernels reduction_kernels_avx512;

const Reduction_kernels& reduction_kernels(Instruction_set set) {
  return set == Instruction_set::avx512 ? reduction_kernels_avx512
         : set == Instruction_set::avx2 ? reduction_kernels_avx2
                                        : reduction_kernels_of_width<2>;
}

}  // namespace kelvane
