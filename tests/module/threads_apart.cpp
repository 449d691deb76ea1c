// SPDX-License-Identifier: BSD-3-Clause
// A library that starts threads and is not the C library, as that of older systems; threads_apart.map gives its
// functions their version. Loaded first, it stands in front of the C library's, too. Says when it starts one.
#include <dlfcn.h>
#include <pthread.h>

#include <cstdio>

#pragma GCC visibility push(default)
extern "C" {
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
  std::puts("a thread");
  const auto start = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return start(thread, attributes, run, argument);
}
/// The name that the test gives to the function in a copy of the module.
int pthread_absent(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
  return pthread_create(thread, attributes, run, argument);
}
}
#pragma GCC visibility pop
