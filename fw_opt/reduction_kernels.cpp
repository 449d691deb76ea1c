// SPDX-License-Identifier: BSD-3-Clause
// Which variant of the kernels belongs to which instruction set.
#include "fw_opt/reduction_kernels.h"

namespace fw {

// Each in a source of its own, compiled for its instruction set.
extern const Reduction_kernels reduction_kernels_sse2;
extern const Reduction_kernels reduction_kernels_avx2;
extern const Reduction_kernels reduction_kernels_avx512;

const Reduction_kernels& reduction_kernels(Instruction_set set) {
  switch (set) {
    case Instruction_set::avx512:
      return reduction_kernels_avx512;
    case Instruction_set::avx2:
      return reduction_kernels_avx2;
    case Instruction_set::sse2:
      break;
  }
  return reduction_kernels_sse2;
}

}  // namespace fw
