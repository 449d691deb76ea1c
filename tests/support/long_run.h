// SPDX-License-Identifier: BSD-3-Clause
// How often a test repeats what it does: a few times for everyday use, often in a long run.
#pragma once

#include <cstdlib>
#include <string>

namespace support {

/// Whether KELVANE_LONG is set to something, as `./test --long` does.
inline bool is_long_run() {
  const char* value = std::getenv("KELVANE_LONG");
  return value != nullptr && std::string(value) != "";
}

template <typename Count>
Count repetitions(Count everyday, Count in_long_run) {
  return is_long_run() ? in_long_run : everyday;
}

}  // namespace support
