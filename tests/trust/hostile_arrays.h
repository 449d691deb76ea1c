// SPDX-License-Identifier: BSD-3-Clause
// The table of arrays that a caller may hand over at any position: class times shape, and doubles times value.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "mex_host.h"
#include "support/long_round.h"

namespace trust {

struct Named_array {
  std::string name;
  mxArray array;
};

struct Named_value {
  const char* name;
  double value;
};

inline constexpr std::array<Named_value, 12> hostile_values{{{"0", 0.0},
                                                             {"-0", -0.0},
                                                             {"1", 1.0},
                                                             {"NaN", std::numeric_limits<double>::quiet_NaN()},
                                                             {"Inf", std::numeric_limits<double>::infinity()},
                                                             {"-Inf", -std::numeric_limits<double>::infinity()},
                                                             {"denormal", 5e-324},
                                                             {"1e-300", 1e-300},
                                                             {"1e300", 1e300},
                                                             {"-1e300", -1e300},
                                                             {"largest", std::numeric_limits<double>::max()},
                                                             {"2^31", 2147483648.0}}};

/// Those for the place of this number: all, or with instrumentation one, and another one for the next place.
inline std::vector<Named_value> values_for_place(std::size_t number) {
  const std::size_t stride = hostile_values.size() / support::count_for_round(hostile_values.size());
  std::vector<Named_value> values;
  for (std::size_t k = number % stride; k < hostile_values.size(); k += stride) values.push_back(hostile_values[k]);
  return values;
}

// Rows and columns as a host counts them: of 3x2x2 it says 3 by 4.
inline constexpr std::array<std::pair<std::size_t, std::size_t>, 20> hostile_shapes{
    {{0, 0}, {0, 1}, {1, 0}, {0, 4}, {3, 0}, {2, 0},  {1, 1},  {1, 2}, {1, 3}, {3, 1},
     {1, 4}, {4, 1}, {2, 2}, {1, 9}, {9, 1}, {1, 10}, {10, 1}, {3, 4}, {2, 4}, {4, 3}}};

inline constexpr std::array<const char*, 14> other_classes{"single", "int8",   "uint8",  "int16",          "uint16",
                                                           "int32",  "uint32", "int64",  "uint64",         "logical",
                                                           "char",   "cell",   "struct", "function_handle"};

/// Arrays of every class but full real double, none of which may be read.
inline std::vector<Named_array> unreadable_arrays() {
  std::vector<Named_array> arrays;
  for (const auto& [rows, columns] : hostile_shapes) {
    const std::string shape = std::to_string(rows) + " by " + std::to_string(columns) + " ";
    for (const char* name : other_classes) arrays.push_back({shape + name, mex_host::other_class(name, rows, columns)});
    arrays.push_back({shape + "object", mex_host::other_class("An_object", rows, columns)});
    mxArray array = mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns, 1.0));
    array.is_complex = true;
    arrays.push_back({shape + "complex", array});
    array.is_sparse = true;
    array.values.resize(rows * columns / 2);  // only what differs from zero is stored
    arrays.push_back({shape + "sparse complex", array});
    array.is_complex = false;
    arrays.push_back({shape + "sparse", array});
  }
  return arrays;
}

/// Full real doubles of every shape and value.
inline std::vector<Named_array> readable_arrays() {
  std::vector<Named_array> arrays;
  for (const auto& [rows, columns] : hostile_shapes) {
    for (const Named_value& value : hostile_values) {
      arrays.push_back({std::to_string(rows) + " by " + std::to_string(columns) + " of " + value.name,
                        mex_host::real_matrix(rows, columns, std::vector<double>(rows * columns, value.value))});
    }
  }
  return arrays;
}

}  // namespace trust
