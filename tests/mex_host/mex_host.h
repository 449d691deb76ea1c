// SPDX-License-Identifier: BSD-3-Clause
// A small stand-in for MATLAB or Octave: arrays, calls, and an error call that throws or jumps.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mex.h"

/// An array of the host, column-major. What is not a full real array of doubles has no data to be asked for.
struct mxArray {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<double> values;
  std::string class_name = "double";
  bool is_sparse = false;
  bool is_complex = false;
  bool throws_int = false;  // when asked for its class, as no host should
};

namespace mex_host {

mxArray real_matrix(std::size_t rows, std::size_t columns, std::vector<double> column_major_values);
mxArray row(std::vector<double> values);
mxArray column(std::vector<double> values);
mxArray scalar(double value);
/// An array of another class, whose data must not be asked for.
mxArray other_class(const std::string& class_name, std::size_t rows = 1, std::size_t columns = 1);

/// How mexErrMsgIdAndTxt leaves the module: Octave throws, MATLAB may jump.
enum class Error_call { throws, jumps };

/// What one call of mexFunction left behind.
struct Result {
  std::optional<mxArray> output;  // plhs[0], when it was assigned
  std::string identifier;         // empty when no error was raised
  std::string message;
  bool has_changed_inputs = false;
  bool has_assigned_other_outputs = false;  // any but the first
  std::string forbidden_access;  // the first host function that was called on an array that has nothing to give
};

Result call(const std::vector<mxArray>& inputs, int num_outputs = 1, Error_call error_call = Error_call::throws);
/// The same for arrays that may stand at several positions.
Result call_by_address(const std::vector<const mxArray*>& inputs, int num_outputs, Error_call error_call);

/// Whether this thread is inside the module: false again while it calls one of the host's functions.
inline thread_local bool is_in_module = false;

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
