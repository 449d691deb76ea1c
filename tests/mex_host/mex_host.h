// SPDX-License-Identifier: BSD-3-Clause
// A small stand-in for MATLAB or Octave: arrays, calls, and an error call that throws or jumps.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "mex.h"

/// An array of the host, column-major. What is not a double array has no data: asking for it fails the call at once.
struct mxArray {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<double> values;
  std::string class_name = "double";
  bool is_sparse = false;
  bool is_complex = false;
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
  std::string forbidden_access;  // the first host function that was called on an array that has nothing to give
};

Result call(const std::vector<mxArray>& inputs, int num_outputs = 1, Error_call error_call = Error_call::throws);

}  // namespace mex_host
