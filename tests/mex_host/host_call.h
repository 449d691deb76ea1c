// SPDX-License-Identifier: BSD-3-Clause
// What the host's functions know of the call that they serve.
#pragma once

#include <array>
#include <csetjmp>
#include <forward_list>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "mex_host.h"

namespace mex_host {

struct Host_error : std::runtime_error {
  using std::runtime_error::runtime_error;
};
struct Host_shortage : std::bad_alloc {};

// One call at a time on each thread.
struct Call {
  Error_call error_call = Error_call::throws;
  unsigned long number = 0;
  std::jmp_buf return_point = {};
  bool has_host_failed = false;
  std::string identifier;
  std::string message;
  std::string forbidden_access;
  std::vector<mxArray::Place> created;                         // and lying in no other array
  std::forward_list<std::array<std::size_t, 2>> matrix_sizes;  // that were asked for as a list
};

/// Of this thread. Another thread than the one that the host has called has no business here: the process ends.
Call& current_call();

/// Notes the first of these.
void forbid(const char* function, const char* what);

/// Whether this call of a function is the one that has to fail.
bool is_to_fail(Host_work work);
/// Leaves the module as Octave does.
[[noreturn]] void throw_shortage();

/// The place in `created` where it lies; their end: it was not made in this call, or lies elsewhere now.
std::vector<mxArray::Place>::iterator place_of(const mxArray* array);

/// The host's own work during a call of one of its functions that may allocate.
class In_host {
 public:
  In_host() { is_in_module = false; }
  ~In_host() { is_in_module = true; }
  In_host(const In_host&) = delete;
  In_host& operator=(const In_host&) = delete;
};

}  // namespace mex_host
