// SPDX-License-Identifier: BSD-3-Clause
// Systems whose columns are linearly dependent up to rounding, with so many rows that they never exist as a matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "fw_opt/least_squares.h"
#include "support/cases.h"
#include "support/linear_systems.h"

namespace {

using support::Case;
using support::Random;

constexpr std::uint64_t seed = 70891;
constexpr double eps = std::numeric_limits<double>::epsilon();
constexpr std::size_t n = 7;
using Unknowns = std::vector<double>;

/// Rows of random numbers that never exist all at once. One column is a combination of the others, in each row up to
/// the rounding of that entry, so that J z = 0 up to rounding for a known z.
class Dependent_rows final : public fw::Row_source {
 public:
  Unknowns null_vector;  // z

  Dependent_rows(std::uint64_t number, std::size_t num_rows, std::size_t piece, Random& random)
      : null_vector(random.vector_in_cube(n, 1.0)), number_(number), num_rows_(num_rows), piece_(piece) {
    dependent_ = number % n;
    null_vector[dependent_] = -1.0;
    for (double& size : sizes_) size = random.magnitude(-1.0, 1.0);
  }

  void send(fw::Row_sink& sink) override {
    Random random(number_);
    for (std::size_t first = 0; first < num_rows_; first += piece_) {
      const std::size_t num_rows = std::min(piece_, num_rows_ - first);
      const std::size_t num_filled = (num_rows + 7) / 8 * 8;
      for (std::size_t c = 0; c <= n; ++c) std::fill_n(sink.column(c), num_filled, 0.0);
      for (std::size_t i = 0; i < num_rows; ++i) write_row(sink, i, random);
      sink.take(first, num_filled);
    }
  }

 private:
  void write_row(fw::Row_sink& sink, std::size_t i, Random& random) const {
    double combination = 0.0;
    for (std::size_t c = 0; c <= n; ++c) {
      if (c == dependent_) continue;
      const double entry = random.uniform(-1.0, 1.0);
      sink.column(c)[i] = c == n ? entry + 0.5 : entry * sizes_[c];
      if (c < n) combination += null_vector[c] * sink.column(c)[i];
    }
    sink.column(dependent_)[i] = combination;
  }

  std::uint64_t number_;
  std::size_t num_rows_, piece_, dependent_;
  double sizes_[n];
};

/// Sums up J'(J dx - b), which is zero where |J dx - b| is least, and the norms that tell how small it has to be.
class Gradient_sink final : public fw::Row_sink {
 public:
  Gradient_sink(fw::Aligned_buffer& memory, const Unknowns& dx)
      : Row_sink(memory.data(), max_rows), dx_(dx), gradient_(n, 0.0) {}

  void take(std::size_t /*first*/, std::size_t num_rows) override {
    for (std::size_t i = 0; i < num_rows; ++i) {
      double residual = -column(n)[i];
      for (std::size_t c = 0; c < n; ++c) residual += column(c)[i] * dx_[c];
      for (std::size_t c = 0; c < n; ++c) {
        gradient_[c] += column(c)[i] * residual;
        squared_norm_ += column(c)[i] * column(c)[i];
      }
      squared_residual_ += residual * residual;
    }
  }

  /// |J'(J dx - b)| / (|J| (|J| |dx| + |J dx - b|))
  double relative_gradient() const {
    const double norm = std::sqrt(squared_norm_);
    return support::length_of(gradient_) / (norm * (norm * support::length_of(dx_) + std::sqrt(squared_residual_)));
  }

 private:
  const Unknowns& dx_;
  Unknowns gradient_;
  double squared_norm_ = 0.0;
  double squared_residual_ = 0.0;
};

/// The step is shortest and least: orthogonal to z, without a gradient.
void expect_minimum_norm(fw::Least_squares& least_squares, std::uint64_t number, std::size_t m) {
  Case which(seed, number);
  SCOPED_TRACE(which);
  const std::size_t piece = 8 * (1 + number * 7 % 30);
  Dependent_rows rows(seed + number, m, piece, which.random);
  Unknowns dx(n, -1.5);
  least_squares.reduce(rows, n);
  least_squares.solve(rows, n, m, dx.data());
  const double along = support::product_of(dx, rows.null_vector) / support::length_of(rows.null_vector);
  EXPECT_LE(std::abs(along), 1e-9 * support::length_of(dx)) << m << " rows in pieces of " << piece;

  fw::Aligned_buffer memory((n + 1) * fw::Row_sink::max_rows);
  Gradient_sink gradient(memory, dx);
  rows.send(gradient);
  EXPECT_LE(gradient.relative_gradient(), 100.0 * eps) << m << " rows in pieces of " << piece;
}

TEST(LeastSquaresRank, GivesTheShortestStepWhateverTheNumberOfRows) {
  fw::Least_squares least_squares;
  std::uint64_t number = 0;
  for (const std::size_t m : {7U, 8U, 12U, 40U, 200U, 1000U, 2000U}) {
    for (int repetition = 0; repetition < 60; ++repetition) expect_minimum_norm(least_squares, ++number, m);
  }
}

TEST(LeastSquaresRank, GivesTheShortestStepOfVeryManyRows) {
  fw::Least_squares least_squares;
  std::uint64_t number = 10000;
#ifdef __SANITIZE_ADDRESS__
  const std::vector<std::size_t> sizes = {10000};
#else
  const std::vector<std::size_t> sizes = {10000, 10001, 20000, 50000, 100000, 200000};
#endif
  for (const std::size_t m : sizes) {
    for (int repetition = 0; repetition < 4; ++repetition) expect_minimum_norm(least_squares, ++number, m);
  }
}

TEST(LeastSquaresRank, IsTheSameForAnyPieces) {
  fw::Least_squares least_squares;
  Random random(seed);
  const auto system = support::system_of(1000, {3.0, 2.0, 1.0, 0.1, 0.0, 0.0}, {1, 1, 1, 1, 1, 1}, 5.0, random);
  const auto expected = reference::least_squares(system.rows(), system.right_hand_side(), system.m());
  ASSERT_EQ(expected.rank, 4U);
  for (std::size_t piece = 8; piece <= fw::Row_sink::max_rows; piece += 8) {
    const std::vector<double> dx = support::step_of(least_squares, system, piece);
    EXPECT_LE(support::distance_between(dx, expected.solution), 1e-12 * support::length_of(dx)) << piece;
  }
}

}  // namespace
