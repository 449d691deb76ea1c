// SPDX-License-Identifier: BSD-3-Clause
// Polynomials of one variable.
#pragma once

#include <vector>

namespace kelvane {

/// c[0] + c[1] r + c[2] r^2 + ...
using Polynomial = std::vector<double>;

Polynomial sum(const Polynomial& a, const Polynomial& b);
Polynomial product(const Polynomial& a, const Polynomial& b);
Polynomial product(double factor, Polynomial a);
Polynomial derivative(const Polynomial& a);

/// The largest r up to `limit` such that a polynomial above 0 at r = 0 is so everywhere between: its first positive
/// root, from below, or the limit; 0 where it is not above 0 at 0.
double first_root(const Polynomial& a, double limit);

}  // namespace kelvane
