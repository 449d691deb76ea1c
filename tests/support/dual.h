// SPDX-License-Identifier: BSD-3-Clause
// Forward-mode dual numbers: a value and its derivatives by n variables, carried through every operation.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace support {

template <std::size_t n>
struct Dual {
  double value = 0.0;
  std::array<double, n> derivatives{};

  Dual() = default;
  Dual(double constant) : value(constant) {}  // NOLINT(google-explicit-constructor): constants mix with duals

  /// The function of `a` with this value and this slope there.
  static Dual chain(double value, double slope, const Dual& a) {
    Dual result(value);
    for (std::size_t i = 0; i < n; ++i) result.derivatives[i] = slope * a.derivatives[i];
    return result;
  }

  friend Dual operator+(const Dual& a, const Dual& b) {
    Dual result(a.value + b.value);
    for (std::size_t i = 0; i < n; ++i) result.derivatives[i] = a.derivatives[i] + b.derivatives[i];
    return result;
  }
  friend Dual operator-(const Dual& a) { return chain(-a.value, -1.0, a); }
  friend Dual operator-(const Dual& a, const Dual& b) { return a + -b; }
  friend Dual operator*(const Dual& a, const Dual& b) {
    Dual result(a.value * b.value);
    for (std::size_t i = 0; i < n; ++i) {
      result.derivatives[i] = a.value * b.derivatives[i] + a.derivatives[i] * b.value;
    }
    return result;
  }
  friend Dual operator/(const Dual& a, const Dual& b) {
    Dual result(a.value / b.value);
    for (std::size_t i = 0; i < n; ++i) {
      result.derivatives[i] = (a.derivatives[i] - result.value * b.derivatives[i]) / b.value;
    }
    return result;
  }

  friend Dual sqrt(const Dual& a) {
    const double root = std::sqrt(a.value);
    return chain(root, 0.5 / root, a);
  }
  friend Dual sin(const Dual& a) { return chain(std::sin(a.value), std::cos(a.value), a); }
  friend Dual cos(const Dual& a) { return chain(std::cos(a.value), -std::sin(a.value), a); }
};

/// The variables themselves: entry i has derivative 1 by variable i.
template <std::size_t n>
std::array<Dual<n>, n> variables(const std::vector<double>& values) {
  std::array<Dual<n>, n> result;
  for (std::size_t i = 0; i < n; ++i) {
    result[i].value = values.at(i);
    result[i].derivatives[i] = 1.0;
  }
  return result;
}

inline double value_of(double number) { return number; }
template <std::size_t n>
double value_of(const Dual<n>& number) {
  return number.value;
}

}  // namespace support
