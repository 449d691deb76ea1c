// SPDX-License-Identifier: BSD-3-Clause
// The heap's functions under their public names, each doing the C library's work and the count.
#include "benchmarks/counting_malloc.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

// The C library's own, behind the public names.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

// Zero before any constructor runs: the loader allocates early.
std::atomic<std::size_t> in_use;
std::atomic<std::size_t> peak;

void* counted(void* block) {
  if (block == nullptr) return block;
  in_use += malloc_usable_size(block);
  peak = std::max(peak.load(), in_use.load());
  return block;
}

void uncount(void* block) {
  if (block != nullptr) in_use -= malloc_usable_size(block);
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }
void* memalign(std::size_t alignment, std::size_t size) { return counted(__libc_memalign(alignment, size)); }
void* aligned_alloc(std::size_t alignment, std::size_t size) { return counted(__libc_memalign(alignment, size)); }

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = counted(__libc_memalign(alignment, size));
  return *block != nullptr ? 0 : ENOMEM;
}

void* realloc(void* block, std::size_t size) {
  uncount(block);
  void* moved = __libc_realloc(block, size);
  if (moved == nullptr && size > 0) counted(block);  // the old one stays
  return counted(moved);
}

void free(void* block) {
  uncount(block);
  __libc_free(block);
}

}  // extern "C"
#pragma GCC visibility pop

namespace bench {

std::size_t bytes_in_use() { return in_use; }
std::size_t peak_bytes_in_use() { return peak; }
void start_peak() { peak = in_use.load(); }

}  // namespace bench
