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

}  // namespace support
