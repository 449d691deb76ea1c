// SPDX-License-Identifier: BSD-3-Clause
// Work on several threads of this process.
#pragma once

#include <cstddef>
#include <functional>

namespace kelvane {

/// How many threads the machine runs at once, 1 or more.
std::size_t num_processors();

/// Calls work() on this thread and on up to num_threads - 1 others at the same time, and comes back when all calls
/// have. Where the system gives no more threads, those that there are do the work. Signals are left to the threads of
/// the caller. work() must throw nothing.
void work_on_threads(std::size_t num_threads, const std::function<void()>& work);

}  // namespace kelvane
