// SPDX-License-Identifier: BSD-3-Clause
// Counts what is allocated in the whole program, its libraries included, by standing in front of the C library's heap.
#pragma once

#include <cstddef>

namespace bench {

/// The most heap bytes that were ever in use at once during the function, beyond those in use before. One thread only.
template <typename Function>
std::size_t peak_bytes(const Function& function);

/// Usable sizes of all blocks of the heap that are in use.
std::size_t bytes_in_use();
/// The most since start_peak().
std::size_t peak_bytes_in_use();
void start_peak();

template <typename Function>
std::size_t peak_bytes(const Function& function) {
  start_peak();
  const std::size_t before = bytes_in_use();
  function();
  return peak_bytes_in_use() - before;
}

}  // namespace bench
