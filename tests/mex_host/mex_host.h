// SPDX-License-Identifier: BSD-3-Clause
// A small stand-in for MATLAB or Octave: arrays, calls, and an error call that throws or jumps.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host_array.h"
#include "mex.h"

namespace mex_host {

/// How mexErrMsgIdAndTxt leaves the module: Octave throws, MATLAB may jump.
enum class Error_call { throws, jumps };

/// What one call of mexFunction left behind.
struct Result {
  std::optional<mxArray> output;       // plhs[0], when it was assigned
  std::vector<mxArray> other_outputs;  // plhs[1] and on, up to the first that was not assigned
  std::string identifier;              // empty when no error was raised
  std::string message;
  bool has_changed_inputs = false;
  bool has_assigned_other_outputs = false;  // any but the first
  bool has_host_failed = false;             // a function of the host did not return, as Failing_host wanted it
  std::string forbidden_access;  // the first use of the host's functions that no host allows; empty: there was none
};

Result call(const std::vector<mxArray>& inputs, int num_outputs = 1, Error_call error_call = Error_call::throws);
/// The same for arrays that may stand at several positions.
Result call_by_address(const std::vector<const mxArray*>& inputs, int num_outputs, Error_call error_call);

/// Whether this thread is inside the module: false again while it calls one of the host's functions.
inline thread_local bool is_in_module = false;

/// Functions of the host that can run out of memory: those that create an array, which then throw or jump as its error
/// call does, and those that look at one, which throw.
enum class Host_work { creating, reading };

/// From construction to destruction, on this thread: `count` calls of such functions succeed, the next one does not
/// return.
class Failing_host {
 public:
  Failing_host(Host_work work, long count);
  ~Failing_host();
  Failing_host(const Failing_host&) = delete;
  Failing_host& operator=(const Failing_host&) = delete;
  bool has_failed() const;
};

struct Call;

/// A call to be made over and over, for measuring: nothing is copied or compared.
class Prepared_call {
 public:
  explicit Prepared_call(std::vector<mxArray> the_inputs);
  ~Prepared_call();
  Prepared_call(const Prepared_call&) = delete;
  Prepared_call& operator=(const Prepared_call&) = delete;

  /// Frees the output of the call before and calls `entry`, asking for one output.
  /// Throws std::runtime_error with the message when the module raises an error.
  void operator()(decltype(&mexFunction) entry = &mexFunction);
  /// Of the last call, until the next.
  const mxArray& output() const { return *output_; }

 private:
  std::vector<mxArray> inputs_;
  std::vector<const mxArray*> input_pointers_;
  std::unique_ptr<Call> call_;
  mxArray* output_ = nullptr;
};

}  // namespace mex_host
