// SPDX-License-Identifier: BSD-3-Clause
// What is called in new libraries, and old ones do not have yet: so a module built here loads where glibc is that of
// 2012 and libstdc++ that of GCC 5. MATLAB brings a libstdc++ of its own, which can be years older than the compiler.
// Nobody outside the module sees these.
#include <pthread.h>
#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>

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

// GLIBCXX_3.4.26: a logic_error is moved, its constructor for a base class. To copy it does the same.
void move_logic_error(void* to, const std::logic_error& from) noexcept asm("_ZNSt11logic_errorC2EOS_");
void move_logic_error(void* to, const std::logic_error& from) noexcept { new (to) std::logic_error(from); }

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

#if defined __GLIBC__ && defined __x86_64__

// glibc keeps functions under the versions that they first had, and the linker takes the newest: led back to the first.
asm(".symver first_exp, exp@GLIBC_2.2.5");      // GLIBC_2.29
asm(".symver first_log, log@GLIBC_2.2.5");      // GLIBC_2.29
asm(".symver first_pow, pow@GLIBC_2.2.5");      // GLIBC_2.29
asm(".symver first_hypot, hypot@GLIBC_2.2.5");  // GLIBC_2.35
extern "C" {
double first_exp(double x);
double first_log(double x);
double first_pow(double x, double y);
double first_hypot(double x, double y);
double exp(double x) noexcept { return first_exp(x); }
double log(double x) noexcept { return first_log(x); }
double pow(double x, double y) noexcept { return first_pow(x, y); }
double hypot(double x, double y) noexcept { return first_hypot(x, y); }
}

#if __GLIBC_PREREQ(2, 33)

// Before, the C library had this under another name, with the version of the struct in front.
asm(".symver first_fstat, __fxstat@GLIBC_2.2.5");
extern "C" {
int first_fstat(int version, int file, struct stat* status) noexcept;
int fstat(int file, struct stat* status) noexcept { return first_fstat(1, file, status); }
}

#endif

#if __GLIBC_PREREQ(2, 34)

// Before, these were in a library of their own, which is in the process where the host has threads; weak, so that a
// host without them loads the module.
asm(".symver first_pthread_create, pthread_create@GLIBC_2.2.5");
asm(".symver first_pthread_join, pthread_join@GLIBC_2.2.5");
extern "C" {
__attribute__((weak)) decltype(pthread_create) first_pthread_create;
__attribute__((weak)) decltype(pthread_join) first_pthread_join;
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
  return first_pthread_create == nullptr ? EAGAIN : first_pthread_create(thread, attributes, run, argument);
}
int pthread_join(pthread_t thread, void** value) {
  return first_pthread_join == nullptr ? ESRCH : first_pthread_join(thread, value);
}
}

#endif
#endif
