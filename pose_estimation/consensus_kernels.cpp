// SPDX-License-Identifier: BSD-3-Clause
// The loop over points that agree with a pose, for what every 64-bit x86 has, and the choice among all variants.
#include "pose_estimation/consensus_kernels.h"

#include "pose_estimation/consensus_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Consensus_kernels consensus_kernels_avx2;
extern const Consensus_kernels consensus_kernels_avx512;

const Consensus_kernels& consensus_kernels(Instruction_set set) {
  return set == Instruction_set::avx512 ? consensus_kernels_avx512
         : set == Instruction_set::avx2 ? consensus_kernels_avx2
                                        : consensus_kernels_of_width<2>;
}

}  // namespace kelvane
