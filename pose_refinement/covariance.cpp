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

using Matrix = double[6][6];

/// C <- A B'
void multiply(const Matrix& A, const Matrix& B, Matrix& C) {
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      C[i][j] = 0.0;
      for (int k = 0; k < 6; ++k) C[i][j] += A[i][k] * B[j][k];
    }
  }
}

/// T C T', of which the last three are lengths.
void to_users(const Matrix& C, const Matrix& T, double unit, Matrix& covariance) {
  Matrix half;
  multiply(T, C, half);
  multiply(half, T, covariance);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) covariance[i][j] *= (i < 3 ? 1.0 : unit) * (j < 3 ? 1.0 : unit);
  }
}

void fill(double (&covariance)[6][6], double value) {
  for (auto& row : covariance) std::fill_n(row, 6, value);
}

/// Equations over unknowns, NaN where there are none over.
double freedom_of(const Refine_input& input) {
  const double excess = static_cast<double>(input.data.num_equations()) - static_cast<double>(input.motion.num_free());
  return excess > 0.0 ? excess : nan;
}

/// What the matrix of the equations says of the noise of the observations holds for that of the prior only without a
/// loss: b / a is then sigma^2. What is missing otherwise, (sigma^2 - b / a) inverse P'P inverse (docs/derivations.md,
/// Eq. 56).
void add_noise_of_prior(const Refine_input& input, const Pose& pose, double factor, Matrix& inverse) {
  double rows[6][7];
  Matrix twists;
  Matrix P = {};
  Matrix half;
  input.prior.linearise(pose, rows);
  if (!input.motion.is_whole()) input.motion.twists(pose, twists);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      if (input.motion.is_whole()) P[i][j] = rows[i][j];
      for (int k = 0; k < 6 && !input.motion.is_whole(); ++k) P[i][j] += rows[i][k] * twists[k][j];
    }
  }
  multiply(inverse, P, half);
  multiply(half, half, P);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) inverse[i][j] += factor * P[i][j];
  }
}

}  // namespace

double noise_sigma_of(const Refine_input& input, Loss loss, double sum_of_pulls, std::vector<double>& lengths) {
  if (input.noise_sigma > 0.0) return input.noise_sigma;
  const double freedom = freedom_of(input);
  return loss == Loss::none
             ? std::sqrt(sum_of_pulls / freedom)
             : noise_of_lengths(lengths) * std::sqrt(1.0 + static_cast<double>(input.motion.num_free()) / freedom);
}

bool set_covariance(const Refine_input& input, const Robust_loss& loss, const Point_sums& sums,
                    std::vector<double>& lengths, Refine_result& result) {
  const bool is_known = input.noise_sigma > 0.0;
  result.noise_sigma = noise_sigma_of(input, loss.kind, sums.pull, lengths);
  const Factors factors = is_known ? expected_factors(loss, result.noise_sigma)
                                   : Factors{sums.weight_and_slope / static_cast<double>(input.data.num_used()),
                                             sums.pull / freedom_of(input)};
  const std::size_t least_points = input.prior.is_given() ? 0 : num_needed_points(input.problem);
  const Pose pose = input.data.world().from_users(result.pose);
  Matrix inverse;
  Descent_system system(input);
  system.linearise(pose, {}, is_known ? &result.is_inlier : nullptr, 1.0 / factors.a);
  const bool is_finite = system.is_finite();
  const bool is_regular = is_finite && system.inverse(inverse);
  if (!is_regular || sums.num_pulling < least_points) {
    const bool is_unknown = !is_finite && sums.num_pulling >= least_points;
    fill(result.covariance, is_unknown ? nan : std::numeric_limits<double>::infinity());
    return false;
  }
  const double ratio = factors.b / factors.a;
  if (input.prior.is_given() && loss.kind != Loss::none) {
    add_noise_of_prior(input, pose, (result.noise_sigma * result.noise_sigma - ratio) / ratio / factors.a, inverse);
  }
  for (auto& row : inverse) {
    for (double& entry : row) entry *= ratio / factors.a;
  }
  Matrix errors;
  input.motion.errors(pose, errors);
  to_users(inverse, errors, input.data.world().unit, result.covariance);
  return true;
}

}  // namespace kelvane
