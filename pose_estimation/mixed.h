// SPDX-License-Identifier: BSD-3-Clause
// Numbers as good as drawn by lot.
#pragma once

#include <cstdint>

namespace kelvane {

/// Step `number` of the generator SplitMix64 (Steele, Lea and Flood 2014), the same on every machine.
inline std::uint64_t mixed(std::uint64_t number) {
  std::uint64_t x = (number + 1) * 0x9E3779B97F4A7C15U;
  x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31U);
}

}  // namespace kelvane
