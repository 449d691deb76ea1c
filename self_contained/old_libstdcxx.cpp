// SPDX-License-Identifier: BSD-3-Clause
// What new C++ headers call in libstdc++ and GCC 5's does not have yet: MATLAB brings a libstdc++ of its own, which can
// be years older than the compiler. Nobody outside the module sees these.
#include <cstdlib>
#include <new>
#include <sstream>

// GLIBCXX_3.4.29: an array whose size is negative.
namespace std {
void __throw_bad_array_new_length() {
  throw std::bad_array_new_length();
}  // NOLINT(cert-dcl58-cpp): named by the library
}  // namespace std

// GLIBCXX_3.4.26: std::stringstream::stringstream(), which is the one with a mode given its default.
extern "C" {
void construct_stringstream(void* memory) __asm__("_ZNSt7__cxx1118basic_stringstreamIcSt11char_traitsIcESaIcEEC1Ev");
void construct_stringstream(void* memory) { new (memory) std::stringstream(std::ios_base::in | std::ios_base::out); }
}

// CXXABI_1.3.11: memory for objects that begin on a cache line.
void* operator new(std::size_t size, std::align_val_t alignment) {
  const std::size_t unit = static_cast<std::size_t>(alignment);
  void* memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept { std::free(memory); }
