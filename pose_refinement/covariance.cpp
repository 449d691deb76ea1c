// SPDX-License-Identifier: BSD-3-Clause
// How far the noise of the observations moves the pose.
#include <algorithm>
#include <cmath>
#include <limits>

#include "pose_refinement/report.h"

namespace kelvane {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// a, the mean of w + s w' / 2, and b, that of (w s)^2 in one coordinate: cov = b / a^2 (sum of G'WG)^-1.
struct Factors {
  double a, b;
};

/// Over normal noise of both coordinates, by the midpoint rule in the residual's length.
Factors expected_factors(const Robust_loss& loss, double noise_sigma) {
  constexpr double step = 0.01;
  constexpr int num_steps = 800;  // to 8 sigma
  Factors factors{0.0, 0.0};
  for (int i = 0; i < num_steps; ++i) {
    const double u = (i + 0.5) * step;
    const double density = step * u * std::exp(-u * u / 2.0);
    const double s = u * noise_sigma;
    const double pull = loss.weight(s) * s;
    factors.a += (loss.weight(s) + loss.slope_times_length(s) / 2.0) * density;
    factors.b += pull * pull * density / 2.0;
  }
  return factors;
}

/// From a twist (v, omega) of the camera frame to [w; dt]: w is omega, and dt is R v.
void to_users(const double (&of_twist)[6][6], const double (&R)[3][3], double (&covariance)[6][6]) {
  double T[6][6] = {};
  for (int i = 0; i < 3; ++i) {
    T[i][3 + i] = 1.0;
    for (int j = 0; j < 3; ++j) T[3 + i][j] = R[i][j];
  }
  double half[6][6] = {};
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      for (int k = 0; k < 6; ++k) half[i][j] += T[i][k] * of_twist[k][j];
    }
  }
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      covariance[i][j] = 0.0;
      for (int k = 0; k < 6; ++k) covariance[i][j] += half[i][k] * T[j][k];
    }
  }
}

void fill(double (&covariance)[6][6], double value) {
  for (auto& row : covariance) std::fill_n(row, 6, value);
}

}  // namespace

bool set_covariance(const Refine_input& input, const Robust_loss& loss, const Point_sums& sums,
                    std::vector<double>& lengths, Refine_result& result) {
  Factors factors{};
  const bool is_known = input.options.noise_sigma > 0.0;
  const double excess = static_cast<double>(input.data.num_equations()) - 6.0;  // equations over unknowns
  if (is_known) {
    result.noise_sigma = input.options.noise_sigma;
    factors = expected_factors(loss, result.noise_sigma);
  } else {
    const double freedom = excess > 0.0 ? excess : nan;
    factors = {sums.weight_and_slope / static_cast<double>(input.data.num_used()), sums.pull / freedom};
    result.noise_sigma =
        loss.kind == Loss::none ? std::sqrt(factors.b) : noise_of_lengths(lengths) * std::sqrt(1.0 + 6.0 / freedom);
  }
  constexpr std::size_t least_points = 3;
  double inverse[6][6];
  Descent_system system(input.data, input.rows);
  system.linearise(input.data.world().from_users(result.pose), {}, is_known ? &result.is_inlier : nullptr);
  const bool is_finite = system.is_finite();
  const bool is_regular = is_finite && system.inverse(inverse);
  if (!is_regular || sums.num_pulling < least_points) {
    const bool is_unknown = !is_finite && sums.num_pulling >= least_points;
    fill(result.covariance, is_unknown ? nan : std::numeric_limits<double>::infinity());
    return false;
  }
  const double unit = input.data.world().unit;
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      inverse[i][j] *= factors.b / (factors.a * factors.a) * (i < 3 ? unit : 1.0) * (j < 3 ? unit : 1.0);
    }
  }
  to_users(inverse, result.pose.rotation, result.covariance);
  return true;
}

}  // namespace kelvane
