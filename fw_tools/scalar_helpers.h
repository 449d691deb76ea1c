// SPDX-License-Identifier: BSD-3-Clause
// Comparison and arithmetic of single values.
#pragma once

namespace fw {

/// Whether a and b differ by at most the tolerance, the bound included. False when any of the three is NaN.
template <typename T>
bool eq(const T& a, const T& b, T tolerance) {
  T difference = a - b;
  if (difference < 0) difference = -difference;
  return tolerance >= difference;
}

/// value * value
template <typename T>
T square(T value) {
  return value * value;
}

/// b when b > a, otherwise a: ties and a NaN in b give a.
template <typename T>
T max_portable(T a, T b) {
  return b > a ? b : a;
}

}  // namespace fw
