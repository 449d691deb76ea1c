// SPDX-License-Identifier: BSD-3-Clause
// Threads by the system's own functions: std::thread starts one by a function that the C++ library of GCC 5 has not.
#include "pose_refinement/threads.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <new>
#include <thread>
#include <vector>

namespace kelvane {
namespace {

extern "C" {
static void* call_work(void* work) {  // static: a C name is not kept here by the namespace around it
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}
}

#ifdef _WIN32

/// Signals come on threads of their own there.
struct Blocked_signals {
  Blocked_signals() {}
};

#else

/// A new thread inherits the signal mask of the thread that starts it.
class Blocked_signals {
 public:
  Blocked_signals() {
    sigset_t all;
    sigfillset(&all);
    set_mask(&all, &before_);
  }
  ~Blocked_signals() { set_mask(&before_, nullptr); }
  Blocked_signals(const Blocked_signals&) = delete;
  Blocked_signals& operator=(const Blocked_signals&) = delete;

 private:
  /// sigprocmask sets this thread's mask on Linux; pthread_sigmask is not in the C library of an old glibc.
  static void set_mask(const sigset_t* mask, sigset_t* before) {
    static_cast<void>(sigprocmask(SIG_SETMASK, mask, before));
  }

  sigset_t before_;
};

#endif

}  // namespace

std::size_t num_processors() { return std::max(1U, std::thread::hardware_concurrency()); }

void work_on_threads(std::size_t num_threads, const std::function<void()>& work) {
  std::vector<pthread_t> others;
  try {
    others.resize(std::max<std::size_t>(num_threads, 1) - 1);
  } catch (const std::bad_alloc&) {  // this thread is enough
  }
  std::size_t num_started = 0;
  {
    const Blocked_signals blocked;
    void* argument = const_cast<std::function<void()>*>(&work);
    while (num_started < others.size() && pthread_create(&others[num_started], nullptr, call_work, argument) == 0) {
      ++num_started;
    }
  }
  work();
  for (std::size_t i = 0; i < num_started; ++i) pthread_join(others[i], nullptr);
}

}  // namespace kelvane
