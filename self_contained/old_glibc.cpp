// SPDX-License-Identifier: BSD-3-Clause
// Functions of the C library by their oldest version, so that a module built with a new glibc loads with an old one.
// The linker sends the calls of all sources and of OpenCV here (--wrap), see cmake/KelvaneSelfContained.cmake.
#include <pthread.h>

// The same function under both versions; the newer one differs in the reports of errors (pow), or in the library that
// it is found in (pthread_*, which glibc 2.34 moved).
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker gives
double oldest_pow(double x, double y);
__asm__(".symver oldest_pow, pow@GLIBC_2.2.5");
double __wrap_pow(double x, double y);
double __wrap_pow(double x, double y) { return oldest_pow(x, y); }

int oldest_key_create(pthread_key_t* key, void (*destructor)(void*));
__asm__(".symver oldest_key_create, pthread_key_create@GLIBC_2.2.5");
int __wrap_pthread_key_create(pthread_key_t* key, void (*destructor)(void*));
int __wrap_pthread_key_create(pthread_key_t* key, void (*destructor)(void*)) {
  return oldest_key_create(key, destructor);
}

int oldest_key_delete(pthread_key_t key);
__asm__(".symver oldest_key_delete, pthread_key_delete@GLIBC_2.2.5");
int __wrap_pthread_key_delete(pthread_key_t key);
int __wrap_pthread_key_delete(pthread_key_t key) { return oldest_key_delete(key); }

void* oldest_getspecific(pthread_key_t key);
__asm__(".symver oldest_getspecific, pthread_getspecific@GLIBC_2.2.5");
void* __wrap_pthread_getspecific(pthread_key_t key);
void* __wrap_pthread_getspecific(pthread_key_t key) { return oldest_getspecific(key); }

int oldest_setspecific(pthread_key_t key, const void* value);
__asm__(".symver oldest_setspecific, pthread_setspecific@GLIBC_2.2.5");
int __wrap_pthread_setspecific(pthread_key_t key, const void* value);
int __wrap_pthread_setspecific(pthread_key_t key, const void* value) { return oldest_setspecific(key, value); }

// Newer ones tell libstdc++ here that there is one thread only, and that it may count references without atomic
// operations. Zero: there may be more.
extern char __libc_single_threaded;
char __libc_single_threaded = 0;
// NOLINTEND(bugprone-reserved-identifier)

}  // extern "C"
