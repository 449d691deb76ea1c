// SPDX-License-Identifier: BSD-3-Clause
// Inputs of a call as a host would present them, without a host.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "contract/argument_contract.h"

namespace support {

/// An input that remembers whether its data were asked for.
struct Fake_input final : kelvane::contract::Input {
  bool double_class = true;
  bool sparse = false;
  bool complex = false;
  std::size_t num_rows = 0;
  std::size_t num_columns = 0;
  std::string name = "double";
  std::vector<double> values;
  mutable bool was_read = false;

  Fake_input() = default;
  Fake_input(std::size_t rows, std::size_t columns, std::vector<double> column_major_values)
      : num_rows(rows), num_columns(columns), values(std::move(column_major_values)) {}

  bool is_double() const override { return double_class; }
  bool is_sparse() const override { return sparse; }
  bool is_complex() const override { return complex; }
  std::size_t rows() const override { return num_rows; }
  std::size_t columns() const override { return num_columns; }
  std::size_t elements() const override { return num_rows * num_columns; }
  const char* class_name() const override { return name.c_str(); }
  const double* data() const override {
    was_read = true;
    return values.data();
  }
  double scalar() const override {
    was_read = true;
    return values.at(0);
  }
};

inline Fake_input fake_row(std::vector<double> values) {
  const std::size_t size = values.size();
  return {1, size, std::move(values)};
}

inline Fake_input fake_shape(std::size_t rows, std::size_t columns) { return {rows, columns, {}}; }

inline Fake_input fake_class(const std::string& name, std::size_t rows, std::size_t columns) {
  Fake_input input(rows, columns, {});
  input.double_class = false;
  input.name = name;
  return input;
}

/// A call with six good inputs for rotation type `type` and `num_points` points; drop or replace what a test needs.
struct Fake_call {
  std::vector<Fake_input> inputs;
  int num_outputs = 1;

  explicit Fake_call(int type, std::size_t num_points = 4) {
    const kelvane::Rotation_type& row = *kelvane::find_rotation_type(type);
    const auto rotation_size = static_cast<std::size_t>(row.rotation_size());
    const auto observation_size = static_cast<std::size_t>(row.observation_size);
    const auto num_equations = observation_size * num_points * static_cast<std::size_t>(row.num_representations);
    inputs.push_back(fake_row(counting(rotation_size + 6)));
    inputs.emplace_back(3, num_points, counting(3 * num_points));
    inputs.emplace_back(observation_size, num_points, counting(observation_size * num_points));
    inputs.push_back(fake_row({50, 1e-6, 1e-6, 0}));
    inputs.push_back(fake_row({static_cast<double>(type)}));
    inputs.push_back(fake_row(std::vector<double>(num_equations, 1.0)));
  }

  Fake_call& keep(std::size_t num_inputs) {
    inputs.resize(num_inputs);
    return *this;
  }
  Fake_call& with(std::size_t position, Fake_input input) {
    inputs.at(position - 1) = std::move(input);
    return *this;
  }

  kelvane::contract::Arguments check() const {
    std::vector<const kelvane::contract::Input*> views;
    for (const Fake_input& input : inputs) views.push_back(&input);
    return kelvane::contract::check_arguments(num_outputs, static_cast<int>(inputs.size()), views.data());
  }

  /// 1, 2, ..., size
  static std::vector<double> counting(std::size_t size) {
    std::vector<double> values(size);
    for (std::size_t i = 0; i < size; ++i) values[i] = static_cast<double>(i + 1);
    return values;
  }
};

}  // namespace support
