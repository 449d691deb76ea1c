// SPDX-License-Identifier: BSD-3-Clause
// The loop over points that agree with a pose, two doubles at a time, and the choice among all variants.
#include "pose_estimation/consensus_kernels.h"

#include "pose_estimation/consensus_kernels_body.h"

namespace kelvane {

// Each in a source of its own, compiled for its instruction set.
extern const Consensus_kernels consensus_kernels_avx2;
extern const Consensus_kernels consensus_kernels_avx512;

const Consensus_kernels& consensus_kernels([[maybe_unused]] Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return consensus_kernels_avx512;
  if (set == Instruction_set::avx2) return consensus_kernels_avx2;
#endif
  return consensus_kernels_of_width<2>;
}

}  // namespace kelvane
