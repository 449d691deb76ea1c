// SPDX-License-Identifier: BSD-3-Clause
// How many cases a test runs: fewer with instrumentation.
#pragma once

#include <algorithm>
#include <cstdint>

namespace support {

inline std::uint64_t count_for_round(std::uint64_t usual) {
#ifdef KELVANE_SANITIZED
  return std::max<std::uint64_t>(1, usual / 10);
#else
  return usual;
#endif
}

}  // namespace support
