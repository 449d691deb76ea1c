// SPDX-License-Identifier: BSD-3-Clause
// A call of the module decoded from bytes: a good one of some type and size, spoiled step by step.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/byte_source.h"
#include "fuzz/hostile_number.h"
#include "mex_host.h"
#include "trust/good_call.h"
#include "trust/hostile_arrays.h"

namespace fuzz {

/// Six header bytes (type, points, kind of Jacobian, error call, inputs, outputs), then steps until the bytes end: what
/// to do, at which input, and the step's own operands.
class Spoiled_call {
 public:
  explicit Spoiled_call(Byte_source& bytes) {
    const int type = trust::all_types[bytes.choice(trust::all_types.size())];
    const std::size_t num_points = bytes.choice(max_points + 1);
    arrays_ = trust::good_inputs(type, num_points, bytes.choice(2) == 0);
    error_call_ = trust::all_error_calls[bytes.choice(2)];
    const std::size_t num_inputs = all_num_inputs[bytes.choice(all_num_inputs.size())];  // zeros make a whole call
    num_outputs_ = all_num_outputs[bytes.choice(all_num_outputs.size())];
    for (const mxArray& array : arrays_) inputs_.push_back(&array);
    while (!bytes.is_empty()) spoil(bytes);
    inputs_.resize(num_inputs, &arrays_.front());
  }

  mex_host::Result run() const { return mex_host::call_by_address(inputs_, num_outputs_, error_call_); }

 private:
  static constexpr std::array<std::size_t, 9> all_num_inputs{6, 5, 4, 3, 2, 1, 0, 7, 40};
  static constexpr std::array<int, 5> all_num_outputs{1, 0, 2, 40, -1};
  static constexpr std::size_t max_points = 40;
  static constexpr std::size_t max_size = 32;

  void spoil(Byte_source& bytes) {
    const std::size_t step = bytes.choice(7);
    const std::size_t position = bytes.choice(arrays_.size());
    mxArray& array = arrays_[position];
    switch (step) {
      case 0:  // one entry
        if (!array.values.empty()) {
          double& entry = array.values[(bytes.byte() * std::size_t{256} + bytes.byte()) % array.values.size()];
          entry = hostile_number(bytes, entry);
        }
        break;
      case 1:  // all entries
        array.values.assign(array.values.size(), hostile_number(bytes, 1.0));
        break;
      case 2:  // another class
        array.class_name = trust::other_classes[bytes.choice(trust::other_classes.size())];
        break;
      case 3:
        array.is_sparse = !array.is_sparse;
        break;
      case 4:
        array.is_complex = !array.is_complex;
        break;
      case 5:  // another shape
        array.rows = bytes.choice(max_size);
        array.columns = bytes.choice(max_size);
        // A new vector, so that there is nothing behind its last entry.
        array.values = std::vector<double>(array.rows * array.columns, hostile_number(bytes, 1.0));
        break;
      default:  // one array at two positions
        inputs_[position] = &arrays_[bytes.choice(arrays_.size())];
    }
  }

  std::vector<mxArray> arrays_;
  std::vector<const mxArray*> inputs_;
  mex_host::Error_call error_call_;
  int num_outputs_;
};

}  // namespace fuzz
