// SPDX-License-Identifier: BSD-3-Clause
// What the processor at hand can run.
#include "least_squares/instruction_set.h"

namespace kelvane {

bool is_available(Instruction_set set) {
#ifdef KELVANE_WIDE_VECTORS
  if (set == Instruction_set::avx512) return __builtin_cpu_supports("avx512f");
  if (set == Instruction_set::avx2) return __builtin_cpu_supports("avx2");
#endif
  return set == Instruction_set::sse2;
}

Instruction_set best_instruction_set() {
  static const Instruction_set best = is_available(Instruction_set::avx512) ? Instruction_set::avx512
                                      : is_available(Instruction_set::avx2) ? Instruction_set::avx2
                                                                            : Instruction_set::sse2;
  return best;
}

}  // namespace kelvane
