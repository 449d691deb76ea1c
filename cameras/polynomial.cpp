// SPDX-License-Identifier: BSD-3-Clause
// Roots by bisection between those of the derivative.
#include "cameras/polynomial.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kelvane {
namespace {

/// At 0 of any coefficients: what overflows further out is not positive there.
double value_at(const Polynomial& a, double r) {
  if (r == 0.0) return a.front();
  double value = 0.0;
  for (auto c = a.rbegin(); c != a.rend(); ++c) value = value * r + *c;
  return value;
}

/// Between low and high, at which the signs differ: the last number with the sign of low.
double bisected(const Polynomial& a, double low, double high) {
  const bool is_positive = value_at(a, low) > 0.0;
  while (true) {
    // Over many decades by their exponents.
    const double middle = low > 0.0 && high > 4.0 * low ? std::sqrt(low) * std::sqrt(high) : low + 0.5 * (high - low);
    if (!(middle > low && middle < high)) return low;
    ((value_at(a, middle) > 0.0) == is_positive ? low : high) = middle;
  }
}

/// Where the polynomial changes its sign between 0 and limit, in order.
std::vector<double> changes_of_sign(Polynomial a, double limit) {
  while (!a.empty() && a.back() == 0.0) a.pop_back();
  if (a.size() < 2) return {};
  std::vector<double> ends = changes_of_sign(derivative(a), limit);  // between them it rises or falls
  ends.push_back(limit);
  std::vector<double> found;
  double low = 0.0;
  for (const double high : ends) {
    if ((value_at(a, low) > 0.0) != (value_at(a, high) > 0.0)) found.push_back(bisected(a, low, high));
    low = high;
  }
  return found;
}

}  // namespace

Polynomial sum(const Polynomial& a, const Polynomial& b) {
  Polynomial result(std::max(a.size(), b.size()));
  for (std::size_t i = 0; i < a.size(); ++i) result[i] += a[i];
  for (std::size_t i = 0; i < b.size(); ++i) result[i] += b[i];
  return result;
}

Polynomial product(const Polynomial& a, const Polynomial& b) {
  if (a.empty() || b.empty()) return {};
  Polynomial result(a.size() + b.size() - 1);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) result[i + j] += a[i] * b[j];
  }
  return result;
}

Polynomial product(double factor, Polynomial a) {
  for (double& c : a) c *= factor;
  return a;
}

Polynomial derivative(const Polynomial& a) {
  Polynomial result;
  for (std::size_t i = 1; i < a.size(); ++i) result.push_back(static_cast<double>(i) * a[i]);
  return result;
}

double first_root(const Polynomial& a, double limit) {
  if (a.empty() || !(a[0] > 0.0)) return 0.0;
  const std::vector<double> changes = changes_of_sign(a, limit);
  return changes.empty() ? limit : changes.front();
}

}  // namespace kelvane
