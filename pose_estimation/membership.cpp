// SPDX-License-Identifier: BSD-3-Clause
// Student's distribution in two dimensions against an even one.
#include "pose_estimation/membership.h"

#include <algorithm>
#include <cmath>

namespace kelvane {
namespace {

constexpr double num_more = 2.0;
constexpr double variance_of_more = 1.0 / 256.0;

}  // namespace

double Membership::freedom() const { return 2.0 * num_chosen - 6.0 + num_more; }

double Membership::variance() const { return (sum_of_squares + num_more * variance_of_more) / freedom(); }

double Membership::odds(double growth, double lever) const {
  const double right_to_wrong = num_chosen / (num_matches - num_chosen + 1.0);
  const double density = std::pow(1.0 + growth / (freedom() * variance()), -0.5 * (freedom() + 2.0));
  return right_to_wrong * density / (2.0 * lever * variance() * chance);
}

double Membership::limit() const {
  constexpr double most = 0.01;  // of right ones are left out, where wrong ones are everywhere
  const double wrong_to_right = std::min(most, 1.0 / odds(0.0, 1.0));
  return freedom() * (std::pow(wrong_to_right, -2.0 / (freedom() + 2.0)) - 1.0) * variance();
}

}  // namespace kelvane
