// SPDX-License-Identifier: BSD-3-Clause
// The allocation functions of the process, for a test that links this file.
#include "trust/failing_memory.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "mex_host.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TRUST_SANITIZED
#endif

namespace {

struct State {
  long allocations_left = -1;  // negative: none fails
  bool is_lasting = false;
  bool has_failed = false;
  long num_blocks = 0;
  bool is_for_exception = false;
  long num_allocations = 0;
  std::size_t num_bytes = 0;
};
thread_local State state;

bool is_refused() {
  if (!mex_host::is_in_module || state.is_for_exception || state.allocations_left < 0) return false;
  if (state.allocations_left > 0) {
    --state.allocations_left;
    return false;
  }
  state.has_failed = true;
  if (!state.is_lasting) state.allocations_left = -1;
  return true;
}

void count_request(std::size_t size) {
  ++state.num_allocations;
  state.num_bytes += size;
}

}  // namespace

namespace trust {

Failing_memory::Failing_memory(long count, Shortage shortage) {
  state = {count, shortage == Shortage::lasting, false, 0, false, 0, 0};
}
Failing_memory::~Failing_memory() { state.allocations_left = -1; }
bool Failing_memory::has_failed() const { return state.has_failed; }
long Failing_memory::num_blocks_left() const { return state.num_blocks; }
long Failing_memory::num_allocations() const { return state.num_allocations; }
std::size_t Failing_memory::num_bytes() const { return state.num_bytes; }

}  // namespace trust

#define TRUST_EXPORTED extern "C" __attribute__((visibility("default")))

// Exception objects always get their memory. In earnest it comes from a reserve of the C++ runtime, which breaks into
// ever smaller pieces when it is asked thousands of times, as here (GCC 12): then it ends the process.
TRUST_EXPORTED void* __cxa_allocate_exception(std::size_t size) noexcept {
  using Function = void* (*)(std::size_t);
  static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "__cxa_allocate_exception"));
  state.is_for_exception = true;
  void* memory = next(size);
  state.is_for_exception = false;
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
  if (memory != nullptr) ++state.num_blocks;
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
  if (memory != nullptr) --state.num_blocks;
  __libc_free(memory);
}

#endif
