// SPDX-License-Identifier: BSD-3-Clause
// What new C++ headers call in libraries, and old ones do not have yet: so a module built here loads where glibc is
// that of 2012 and libstdc++ that of GCC 5. MATLAB brings a libstdc++ of its own, which can be years older than the
// compiler. Nobody outside the module sees these.
#include <cstdlib>
#include <new>

#ifdef __GLIBCXX__

// GLIBC_2.32: whether there is one thread only, so that references may be counted without atomic operations. Zero:
// there may be more.
extern "C" {
extern char __libc_single_threaded;  // NOLINT(bugprone-reserved-identifier): named by the library
char __libc_single_threaded = 0;     // NOLINT(bugprone-reserved-identifier): the same
}

// GLIBCXX_3.4.29: an array whose size is negative.
namespace std {  // NOLINT(cert-dcl58-cpp): named by the library
void __throw_bad_array_new_length() { throw std::bad_array_new_length(); }
}  // namespace std

// CXXABI_1.3.11: memory for objects that begin on a cache line.
void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<std::size_t>(alignment);
  void* memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept { std::free(memory); }

#endif
