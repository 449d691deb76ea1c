// SPDX-License-Identifier: BSD-3-Clause
// Numbers that are the same to the last bit.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>

namespace support {

/// Of a NaN, too: but not with instrumentation or GCC from 13 on, which change the order of operands from one copy of a
/// function to another, and by that the sign of a NaN.
inline bool have_same_bits(const double* a, const double* b, std::size_t size) {
#if defined KELVANE_SANITIZED || __GNUC__ >= 13
  for (std::size_t i = 0; i < size; ++i) {
    if (!(std::isnan(a[i]) && std::isnan(b[i])) && std::memcmp(&a[i], &b[i], sizeof(double)) != 0) return false;
  }
  return true;
#else
  return std::memcmp(a, b, size * sizeof(double)) == 0;
#endif
}

}  // namespace support
