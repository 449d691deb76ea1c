// SPDX-License-Identifier: BSD-3-Clause
// The vector instructions that a kernel may use.
#pragma once

#include <cstddef>

// Not on ARM, whose vectors hold two doubles; not on Windows, where GCC keeps wide vectors on a stack that is not
// aligned for them.
#if defined __x86_64__ && !defined _WIN32
#define KELVANE_WIDE_VECTORS
#endif

namespace kelvane {

inline constexpr std::size_t group_size = 8;  ///< rows next to each other in all data: as many as the widest vector has

/// Each one has a variant of every kernel; all variants give the same bits.
enum class Instruction_set {
  sse2,   ///< two doubles at a time, as every 64-bit x86 or ARM has them
  avx2,   ///< four
  avx512  ///< eight
};

/// All of them, narrowest first.
inline constexpr Instruction_set instruction_sets[] = {Instruction_set::sse2, Instruction_set::avx2,
                                                       Instruction_set::avx512};

/// Whether processor and operating system run it.
bool is_available(Instruction_set set);

/// The widest that is available; asked of the processor once.
Instruction_set best_instruction_set();

}  // namespace kelvane
