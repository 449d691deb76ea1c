// SPDX-License-Identifier: BSD-3-Clause
// The Jacobian of any function by a fourth-order difference stencil.
#pragma once

#include <cstddef>
#include <vector>

#include "fw_tools/matrix.h"

namespace support {

/// Row i, column j: d f(x)_i / d x_j = (8 (f(x+h) - f(x-h)) - (f(x+2h) - f(x-2h))) / (12 h). At h = 3e-4 the truncation
/// h^4 f'''''/30 and the rounding eps f / h balance near 1e-12 of f.
template <typename Function>
fw::matrix<double> numeric_jacobian(const Function& f, const std::vector<double>& x, double h = 3e-4) {
  const auto at = [&](std::size_t j, double step) {
    std::vector<double> moved = x;
    moved[j] += step;
    return f(moved);
  };
  fw::matrix<double> J(static_cast<int>(f(x).size()), static_cast<int>(x.size()));
  for (std::size_t j = 0; j < x.size(); ++j) {
    const std::vector<double> near_above = at(j, h);
    const std::vector<double> near_below = at(j, -h);
    const std::vector<double> far_above = at(j, 2.0 * h);
    const std::vector<double> far_below = at(j, -2.0 * h);
    for (std::size_t i = 0; i < near_above.size(); ++i) {
      const double difference = 8.0 * (near_above[i] - near_below[i]) - (far_above[i] - far_below[i]);
      J.set(static_cast<unsigned>(i), static_cast<unsigned>(j), difference / (12.0 * h));
    }
  }
  return J;
}

}  // namespace support
