// SPDX-License-Identifier: BSD-3-Clause
// Functions of dual numbers beyond those of the camera model.
#pragma once

#include <cmath>
#include <cstddef>

#include "support/dual.h"

namespace support {

/// The slope from (1 - a)(1 + a), which keeps the digits that 1 - a^2 loses near 1.
template <std::size_t n>
Dual<n> acos(const Dual<n>& a) {
  return Dual<n>::chain(std::acos(a.value), -1.0 / std::sqrt((1.0 - a.value) * (1.0 + a.value)), a);
}

template <std::size_t n>
Dual<n> atan(const Dual<n>& a) {
  return Dual<n>::chain(std::atan(a.value), 1.0 / (1.0 + a.value * a.value), a);
}

/// The angle of (x, y) to the axis x.
template <std::size_t n>
Dual<n> atan2(const Dual<n>& y, const Dual<n>& x) {
  const double square = x.value * x.value + y.value * y.value;
  Dual<n> result(std::atan2(y.value, x.value));
  for (std::size_t i = 0; i < n; ++i) {
    result.derivatives[i] = (x.value * y.derivatives[i] - y.value * x.derivatives[i]) / square;
  }
  return result;
}

}  // namespace support
