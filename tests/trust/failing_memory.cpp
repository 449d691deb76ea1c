// SPDX-License-Identifier: BSD-3-Clause
// The allocation functions of the process, for a test that links this file.
#include "trust/failing_memory.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "mex_host.h"

#if defined(KELVANE_SANITIZED) || defined(__SANITIZE_THREAD__)
#define TRUST_SANITIZED
#endif

namespace {

std::atomic<long> allocations_left = -1;  // negative: none fails
std::atomic<bool> is_lasting = false;
std::atomic<bool> has_failed_once = false;
std::atomic<long> num_blocks = 0;
std::atomic<long> num_requests = 0;
std::atomic<std::size_t> num_bytes_asked = 0;
std::atomic<pthread_t> caller = {};
thread_local bool is_for_exception = false;

/// Threads that the module has started are in it all the time.
bool is_of_module() { return mex_host::is_in_module || caller != pthread_self(); }

bool is_refused() {
  if (allocations_left < 0 || is_for_exception || !is_of_module()) return false;
  long left = allocations_left;
  // From 0 on one fails, and then either none or all.
  while (left > 0 || (left == 0 && !is_lasting)) {
    if (allocations_left.compare_exchange_weak(left, left - 1)) break;
  }
  if (left != 0) return false;
  has_failed_once = true;
  return true;
}

void count_request(std::size_t size) {
  ++num_requests;
  num_bytes_asked += size;
}

}  // namespace

namespace trust {

Failing_memory::Failing_memory(long count, Shortage shortage) {
  caller = pthread_self();
  is_lasting = shortage == Shortage::lasting;
  has_failed_once = false;
  num_blocks = num_requests = 0;
  num_bytes_asked = 0;
  allocations_left = count;
}
Failing_memory::~Failing_memory() { end_shortage(); }
void Failing_memory::end_shortage() { allocations_left = -1; }
bool Failing_memory::has_failed() const { return has_failed_once; }
long Failing_memory::num_blocks_left() const { return num_blocks; }
long Failing_memory::num_allocations() const { return num_requests; }
std::size_t Failing_memory::num_bytes() const { return num_bytes_asked; }

}  // namespace trust

#define TRUST_EXPORTED extern "C" __attribute__((visibility("default")))

// Exception objects always get their memory. In earnest it comes from a reserve of the C++ runtime, which breaks into
// ever smaller pieces when it is asked thousands of times, as here (GCC 12): then it ends the process.
TRUST_EXPORTED void* __cxa_allocate_exception(std::size_t size) noexcept {
  using Function = void* (*)(std::size_t);
  static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "__cxa_allocate_exception"));
  is_for_exception = true;
  void* memory = next(size);
  is_for_exception = false;
  return memory;
}

#ifdef TRUST_SANITIZED

// malloc stays the sanitizer's: only what goes through operator new is refused.
// Never inlined: a compiler that saw malloc() on one side and operator delete on the other would take them for a pair
// that does not match.
[[gnu::noinline]] void* operator new(std::size_t size) {
  count_request(size);
  void* memory = is_refused() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void* operator new[](std::size_t size) { return operator new(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

#else

// The C library's functions under their other names; operator new in all its forms ends here, too.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

void* counted(void* memory, std::size_t size) {
  count_request(size);
  if (memory != nullptr) ++num_blocks;
  return memory;
}

void* refused() {
  errno = ENOMEM;
  return nullptr;
}

}  // namespace

TRUST_EXPORTED void* malloc(std::size_t size) { return is_refused() ? refused() : counted(__libc_malloc(size), size); }
TRUST_EXPORTED void* calloc(std::size_t count, std::size_t size) {
  return is_refused() ? refused() : counted(__libc_calloc(count, size), count * size);
}
TRUST_EXPORTED void* realloc(void* memory, std::size_t size) {
  if (memory == nullptr) return malloc(size);
  count_request(size);
  return is_refused() ? refused() : __libc_realloc(memory, size);
}
TRUST_EXPORTED void* memalign(std::size_t alignment, std::size_t size) {
  return is_refused() ? refused() : counted(__libc_memalign(alignment, size), size);
}
TRUST_EXPORTED void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }
TRUST_EXPORTED int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  void* block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *memory = block;
  return 0;
}
TRUST_EXPORTED void free(void* memory) {
  if (memory != nullptr) --num_blocks;
  __libc_free(memory);
}

#endif
