// SPDX-License-Identifier: BSD-3-Clause
// How many cases a test runs: fewer with instrumentation, but in a long run.
#pragma once

#include <algorithm>
#include <cstdint>

#include "support/long_run.h"

namespace support {

inline std::uint64_t count_for_round(std::uint64_t usual) {
#ifdef KELVANE_SANITIZED
  return is_long_run() ? usual : std::max<std::uint64_t>(1, usual / 10);
#else
  return usual;
#endif
}

}  // namespace support
