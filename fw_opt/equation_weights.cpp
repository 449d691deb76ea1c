// SPDX-License-Identifier: BSD-3-Clause
// Lookup and growth of a list of weights.
#include "fw_opt/equation_weights.h"

#include <cstddef>
#include <stdexcept>

namespace fw {
namespace {

std::size_t checked_index(int i) {
  if (i < 0) throw std::out_of_range("vector::_M_range_check");
  return static_cast<std::size_t>(i);
}

}  // namespace

double equation_weight(const std::vector<double>& weights, int i) {
  if (weights.empty()) return 1.0;
  const std::size_t index = checked_index(i);
  // Thrown here, not by at(): the library's own text also gives the numbers.
  if (index >= weights.size()) throw std::out_of_range("vector::_M_range_check");
  return weights[index];
}

void set_equation_weight(std::vector<double>& weights, int i, double weight) {
  const std::size_t index = checked_index(i);
  if (index >= weights.size()) weights.resize(index + 1, 0.0);
  weights[index] = weight;
}

}  // namespace fw
