// SPDX-License-Identifier: BSD-3-Clause
// Threads that the system gives, or does not. The linker calls the functions below in place of the system's.
#include "pose_refinement/threads.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <set>
#include <vector>

namespace {

constexpr int any_number = 1000;
int num_more = any_number;  // threads that can be started
int num_running = 0;        // started, and not joined

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): named by the linker
extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_join(pthread_t, void**);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument) {
  if (num_more == 0) return EAGAIN;
  --num_more;
  ++num_running;
  return __real_pthread_create(thread, attributes, start, argument);
}

int __wrap_pthread_join(pthread_t thread, void** result) {
  --num_running;
  return __real_pthread_join(thread, result);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

/// Waits until so many threads are here at the same time; false if they do not come.
bool meet(std::atomic<std::size_t>& num_here, std::size_t num_threads) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  ++num_here;
  while (num_here < num_threads) {
    if (std::chrono::steady_clock::now() > end) return false;
  }
  return true;
}

class Threads : public testing::Test {
 protected:
  ~Threads() override {
    num_more = any_number;
    EXPECT_EQ(num_running, 0);
  }
};

TEST_F(Threads, WorkAtTheSameTime) {
  for (const std::size_t num_threads : {0U, 1U, 2U, 5U}) {
    std::atomic<std::size_t> num_here{0};
    std::atomic<bool> have_met{true};
    kelvane::work_on_threads(num_threads, [&] {
      if (!meet(num_here, num_threads)) have_met = false;
    });
    EXPECT_TRUE(have_met);
    EXPECT_EQ(num_here, std::max<std::size_t>(num_threads, 1));
    EXPECT_EQ(num_running, 0);
  }
  EXPECT_EQ(num_more, any_number - 1 - 4);
}

TEST_F(Threads, DoWithAsFewAsThereAre) {
  for (int num_there = 0; num_there < 3; ++num_there) {
    num_more = num_there;
    std::atomic<int> num_calls{0};
    kelvane::work_on_threads(4, [&] { ++num_calls; });
    EXPECT_EQ(num_calls, num_there + 1);
    EXPECT_EQ(num_running, 0);
  }
}

/// Whether all signals that can be are blocked on this thread.
bool is_deaf() {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  for (const int signal : {SIGINT, SIGTERM, SIGUSR1, SIGCHLD, SIGALRM, SIGSEGV}) {
    if (sigismember(&mask, signal) == 0) return false;
  }
  return true;
}

TEST_F(Threads, LeaveSignalsToTheCaller) {
  for (const int blocked : {0, SIGUSR2}) {
    sigset_t before;
    sigemptyset(&before);
    if (blocked != 0) sigaddset(&before, blocked);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    const pthread_t caller = pthread_self();
    std::atomic<std::size_t> num_here{0};
    std::atomic<int> num_deaf{0};
    std::atomic<int> num_wrong{0};
    kelvane::work_on_threads(3, [&] {
      num_deaf += is_deaf() ? 1 : 0;
      num_wrong += is_deaf() == (pthread_equal(pthread_self(), caller) != 0) ? 1 : 0;
      meet(num_here, 3);
    });
    EXPECT_EQ(num_deaf, 2);
    EXPECT_EQ(num_wrong, 0);
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1, SIGUSR2, SIGCHLD}) {
      EXPECT_EQ(sigismember(&after, signal), signal == blocked ? 1 : 0) << signal;
    }
  }
}

TEST_F(Threads, AreAsManyAsTheMachineRuns) {
  EXPECT_EQ(kelvane::num_processors(), static_cast<std::size_t>(sysconf(_SC_NPROCESSORS_ONLN)));
}

}  // namespace
