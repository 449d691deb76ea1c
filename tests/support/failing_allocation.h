// SPDX-License-Identifier: BSD-3-Clause
// An allocator that refuses one chosen allocation. It replaces the global one, so an executable includes it once.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace support {

/// How many allocations succeed before the one that fails; negative: none fails.
inline int allocations_left = -1;

inline void* allocate(std::size_t size) {
  if (allocations_left >= 0 && allocations_left-- == 0) throw std::bad_alloc();
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

/// Lets `count` allocations succeed and the next one fail, once; harmless again when it ends.
class Failing_allocation {
 public:
  explicit Failing_allocation(int count) { allocations_left = count; }
  ~Failing_allocation() { allocations_left = -1; }
  Failing_allocation(const Failing_allocation&) = delete;
  Failing_allocation& operator=(const Failing_allocation&) = delete;
  bool has_happened() const { return allocations_left < 0; }
};

}  // namespace support

// Never inlined: a compiler that saw malloc() on one side and operator delete on the other would take them for a pair
// that does not match.
[[gnu::noinline]] void* operator new(std::size_t size) { return support::allocate(size); }
[[gnu::noinline]] void* operator new[](std::size_t size) { return support::allocate(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
