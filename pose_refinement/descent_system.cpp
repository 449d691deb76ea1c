// SPDX-License-Identifier: BSD-3-Clause
// One loop over the points, and two ways to solve what is left of them.
#include "pose_refinement/descent_system.h"

#include <algorithm>
#include <cmath>

#include "least_squares/singular_values.h"

namespace kelvane {

void Descent_system::linearise(const Pose& pose, const Robust_loss& loss, const std::vector<unsigned char>* marks,
                               double of_prior) {
  triangle_.start(6);
  for (auto& sums : slope_sums_) std::fill_n(sums, group_size, 0.0);
  for (const Sights& all : data_.sights()) {
    Sights marked;
    if (marks != nullptr) {
      marked = all;
      marked.has_ones = false;
      for (std::size_t i = 0; i < all.num_points; ++i) {
        if ((*marks)[all.index[i]] != 0) continue;
        for (std::size_t k = 0; k < all.d; ++k) marked.weights[all.row(i, k)] = 0.0;
      }
    }
    const Sights& sights = marks != nullptr ? marked : all;
    rows_.linearise(sights, pose, block_);
    whiten(sights);
    if (loss.kind == Loss::none && marks == nullptr && !data_.has_weights()) {
      clear_filling(sights);  // all other weights are 1
    } else {
      weigh(sights, loss);
    }
    triangle_.absorb(block_, sights.num_rows());
  }
  sum_up_slopes();
  absorb_prior(pose, of_prior);
  reduce_to_free_motion(pose);
}

void Descent_system::whiten(const Sights& sights) {
  if (sights.whitening == nullptr) return;
  for (std::size_t c = 0; c < 7; ++c) {
    rows_.sight_kernels().whiten(sights.whitening, sights.d, sights.num_groups(), block_.column(c));
  }
}

void Descent_system::absorb_prior(const Pose& pose, double factor) {
  if (!prior_.is_given()) return;
  double rows[6][7];
  prior_.linearise(pose, rows);
  for (auto& row : rows) {
    for (double& entry : row) entry *= std::sqrt(factor);
  }
  absorb_rows(rows, 6);
}

/// From a twist x to y with x = T y, and to as many equations again, y_j = 0, for those that are not there: what solves
/// six unknowns solves these as well.
void Descent_system::reduce_to_free_motion(const Pose& pose) {
  if (motion_.is_whole()) return;
  const std::size_t num_free = motion_.num_free();
  double rows[12][7] = {};
  motion_.twists(pose, twists_);
  double longest = 0.0;
  for (std::size_t i = 0; i < 6; ++i) {
    const double* R = triangle_.entries() + 7 * i;
    rows[i][6] = R[6];
    for (std::size_t j = 0; j < num_free; ++j) {
      for (std::size_t k = i; k < 6; ++k) rows[i][j] += R[k] * twists_[k][j];
      longest = std::max(longest, std::abs(rows[i][j]));
    }
  }
  for (std::size_t j = num_free; j < 6; ++j) rows[j + 6][j] = longest;
  triangle_.start(6);
  absorb_rows(rows, 12);
  if (!has_slopes_) return;
  double half[6][6] = {};  // M T
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < 6; ++j) {
      for (std::size_t k = 0; k < 6; ++k) half[i][j] += (k < i ? slopes_[k][i] : slopes_[i][k]) * twists_[k][j];
    }
  }
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = i; j < 6; ++j) {
      slopes_[i][j] = 0.0;
      for (std::size_t k = 0; k < 6; ++k) slopes_[i][j] += twists_[k][i] * half[k][j];
    }
  }
}

void Descent_system::absorb_rows(const double (*rows)[7], std::size_t num_rows) {
  const std::size_t whole = (num_rows + group_size - 1) / group_size * group_size;
  block_.resize(6);
  for (std::size_t c = 0; c < 7; ++c) {
    for (std::size_t i = 0; i < whole; ++i) block_.column(c)[i] = i < num_rows ? rows[i][c] : 0.0;
  }
  triangle_.absorb(block_, whole);
}

void Descent_system::make_twist(double* solution) const {
  if (motion_.is_whole()) return;
  double twist[6] = {};
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < motion_.num_free(); ++j) twist[i] += twists_[i][j] * solution[j];
  }
  std::copy_n(twist, 6, solution);
}

void Descent_system::clear_filling(const Sights& sights) {
  for (std::size_t i = sights.num_points; i < sights.num_groups() * group_size; ++i) {
    for (std::size_t k = 0; k < sights.d; ++k) {
      for (std::size_t c = 0; c < 7; ++c) block_.column(c)[sights.row(i, k)] = 0.0;
    }
  }
}

/// From G and r to sqrt(w W) G and sqrt(w W) r.
void Descent_system::weigh(const Sights& sights, const Robust_loss& loss) {
  const Sight_kernels& kernels = rows_.sight_kernels();
  double* const r = block_.column(6);
  double lengths[Sights::most_points];
  alignas(cache_line) double roots[Block::max_rows];
  lengths_of_whitened(sights, kernels, r, lengths);
  kernels.add_slopes(loss, sights.factors(), lengths, sights.d, sights.num_groups(), block_.column(0), block_.stride(),
                     slope_sums_);
  kernels.weigh(loss, sights.factors(), lengths, sights.d, sights.num_groups(), r, roots);
  for (std::size_t c = 0; c < 6; ++c) kernels.scale(roots, sights.num_rows(), block_.column(c));
}

void Descent_system::sum_up_slopes() {
  const double(*sums)[group_size] = slope_sums_;
  has_slopes_ = false;
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = i; j < 6; ++j, ++sums) {
      slopes_[i][j] = 0.0;
      for (const double sum : *sums) slopes_[i][j] += sum;
      has_slopes_ = has_slopes_ || slopes_[i][j] != 0.0;
    }
  }
}

bool Descent_system::is_finite() const {
  return std::all_of(triangle_.entries(), triangle_.entries() + 42, [](double entry) { return std::isfinite(entry); });
}

Steps Descent_system::steps() {
  Steps steps;
  if (!is_finite()) return steps;
  double* usual = steps.twists[0];
  const std::size_t num_rows = data_.num_used() * data_.d();
  const bool is_plain = small_.solve_plainly(triangle_.entries(), 6, num_rows, usual);
  if (!is_plain) small_.solve_shortest(triangle_.entries(), 6, num_rows, Small_system::Units::last_three, usual);
  steps.count = 1;
  for (std::size_t i = 0; is_plain && i < 6; ++i) steps.decrease += std::pow(triangle_.entries()[7 * i + 6], 2);
  if (is_plain && has_slopes_) {
    double better[6];
    if (newton(better)) {
      std::copy_n(usual, 6, steps.twists[1]);
      std::copy_n(better, 6, steps.twists[0]);
      steps.count = 2;
      steps.decrease = 0.0;
    }
  }
  for (std::size_t i = 0; i < steps.count; ++i) make_twist(steps.twists[i]);
  return steps;
}

namespace {

/// x <- R^-T x with row i of R at i * 7.
void solve_transposed(const double* R, double* x) {
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t k = 0; k < i; ++k) x[i] -= R[7 * k + i] * x[k];
    x[i] /= R[7 * i + i];
  }
}

/// x <- R^-1 x
void solve_triangle(const double* R, double* x) {
  for (std::size_t i = 6; i-- > 0;) {
    for (std::size_t k = i + 1; k < 6; ++k) x[i] -= R[7 * i + k] * x[k];
    x[i] /= R[7 * i + i];
  }
}

/// The upper triangle U with U'U = A, rows of 7, from the upper half; false where A is not positive definite.
bool factorise(const double (&A)[6][6], double* U) {
  constexpr double least_pivot = 1e-10;  // of a matrix that is I where the loss has no slope
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = i; j < 6; ++j) {
      double entry = A[i][j];
      for (std::size_t k = 0; k < i; ++k) entry -= U[7 * k + i] * U[7 * k + j];
      if (i == j && !(entry > least_pivot)) return false;
      U[7 * i + j] = i == j ? std::sqrt(entry) : entry / U[7 * i + i];
    }
  }
  return true;
}

}  // namespace

/// H = R'R - M = R' (I - R^-T M R^-1) R, and what is in brackets does not depend on units.
bool Descent_system::newton(double* twist) const {
  const double* R = triangle_.entries();
  double half[6][6];  // row j: column j of R^-T M
  double A[6][6];
  double U[42];
  for (std::size_t j = 0; j < 6; ++j) {
    for (std::size_t i = 0; i < 6; ++i) half[j][i] = i < j ? slopes_[i][j] : slopes_[j][i];
    solve_transposed(R, half[j]);
  }
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < 6; ++j) A[i][j] = half[j][i];
    solve_transposed(R, A[i]);
    for (std::size_t j = 0; j < 6; ++j) A[i][j] = (i == j ? 1.0 : 0.0) - A[i][j];
  }
  if (!factorise(A, U)) return false;
  for (std::size_t i = 0; i < 6; ++i) twist[i] = R[7 * i + 6];
  solve_transposed(U, twist);
  solve_triangle(U, twist);
  solve_triangle(R, twist);
  return true;
}

bool Descent_system::inverse(double (&covariance)[6][6]) {
  constexpr double least_part = 1e-12;  // of the largest singular value, with columns of length 1
  double lengths[7];
  double rows[42];
  squared_column_lengths(triangle_.entries(), 6, lengths);
  for (double& length : lengths) length = std::max(std::sqrt(length), 1e-300);
  for (std::size_t i = 0; i < 42; ++i) rows[i] = triangle_.entries()[i] / lengths[i % 7];
  Singular_values values;
  values.decompose(rows, 6, 6);
  for (auto& row : covariance) std::fill_n(row, 6, 0.0);
  for (std::size_t k = 0; k < 6; ++k) {
    if (!(values.sigma(k) > least_part * values.largest())) return false;
    for (std::size_t i = 0; i < 6; ++i) {
      for (std::size_t j = 0; j < 6; ++j) {
        covariance[i][j] +=
            (values.v(k)[i] / values.sigma(k) / lengths[i]) * (values.v(k)[j] / values.sigma(k) / lengths[j]);
      }
    }
  }
  return true;
}

}  // namespace kelvane
