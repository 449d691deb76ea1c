// SPDX-License-Identifier: BSD-3-Clause
// Systems whose columns are linearly dependent up to rounding, with so many rows that they never exist as a matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "least_squares/small_system.h"
#include "least_squares/triangle.h"
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
class Dependent_rows {
 public:
  Unknowns null_vector;  // z

  Dependent_rows(std::uint64_t number, std::size_t num_rows, std::size_t piece, Random& random)
      : null_vector(random.vector_in_cube(n, 1.0)), number_(number), num_rows_(num_rows), piece_(piece) {
    dependent_ = number % n;
    null_vector[dependent_] = -1.0;
    for (double& size : sizes_) size = random.magnitude(-1.0, 1.0);
  }

  template <typename Visit>
  void visit_blocks(kelvane::Block& block, const Visit& visit) const {
    Random random(number_);
    for (std::size_t first = 0; first < num_rows_; first += piece_) {
      const std::size_t num_rows = std::min(piece_, num_rows_ - first);
      const std::size_t num_filled = (num_rows + 7) / 8 * 8;
      for (std::size_t c = 0; c <= n; ++c) std::fill_n(block.column(c), num_filled, 0.0);
      for (std::size_t i = 0; i < num_rows; ++i) write_row(block, i, random);
      visit(num_filled);
    }
  }

 private:
  void write_row(kelvane::Block& block, std::size_t i, Random& random) const {
    double combination = 0.0;
    for (std::size_t c = 0; c <= n; ++c) {
      if (c == dependent_) continue;
      const double entry = random.uniform(-1.0, 1.0);
      block.column(c)[i] = c == n ? entry + 0.5 : entry * sizes_[c];
      if (c < n) combination += null_vector[c] * block.column(c)[i];
    }
    block.column(dependent_)[i] = combination;
  }

  std::uint64_t number_;
  std::size_t num_rows_, piece_, dependent_;
  double sizes_[n];
};

/// Sums up J'(J dx - b), which is zero where |J dx - b| is least, and the norms that tell how small it has to be.
class Gradient {
 public:
  explicit Gradient(const Unknowns& dx) : dx_(dx), gradient_(n, 0.0) {}

  void add(kelvane::Block& block, std::size_t num_rows) {
    for (std::size_t i = 0; i < num_rows; ++i) {
      double residual = -block.column(n)[i];
      for (std::size_t c = 0; c < n; ++c) residual += block.column(c)[i] * dx_[c];
      for (std::size_t c = 0; c < n; ++c) {
        gradient_[c] += block.column(c)[i] * residual;
        squared_norm_ += block.column(c)[i] * block.column(c)[i];
      }
      squared_residual_ += residual * residual;
    }
  }

  /// |J'(J dx - b)| / (|J| (|J| |dx| + |J dx - b|))
  double relative() const {
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
void expect_minimum_norm(std::uint64_t number, std::size_t m) {
  Case which(seed, number);
  SCOPED_TRACE(which);
  const std::size_t piece = 8 * (1 + number * 7 % 30);
  const Dependent_rows rows(seed + number, m, piece, which.random);
  kelvane::Block block;
  block.resize(n);
  kelvane::Triangle triangle;
  triangle.start(n);
  rows.visit_blocks(block, [&](std::size_t num_rows) { triangle.absorb(block, num_rows); });
  Unknowns dx(n, -1.5);
  kelvane::Small_system().solve_shortest(triangle.entries(), n, m, kelvane::Small_system::Units::each, dx.data());
  const double along = support::product_of(dx, rows.null_vector) / support::length_of(rows.null_vector);
  EXPECT_LE(std::abs(along), 1e-9 * support::length_of(dx)) << m << " rows in pieces of " << piece;

  Gradient gradient(dx);
  rows.visit_blocks(block, [&](std::size_t num_rows) { gradient.add(block, num_rows); });
  EXPECT_LE(gradient.relative(), 100.0 * eps) << m << " rows in pieces of " << piece;
}

TEST(MatrixSolutionRank, GivesTheShortestStepWhateverTheNumberOfRows) {
  std::uint64_t number = 0;
  for (const std::size_t m : {7U, 8U, 12U, 40U, 200U, 1000U, 2000U}) {
    for (int repetition = 0; repetition < 60; ++repetition) expect_minimum_norm(++number, m);
  }
}

TEST(MatrixSolutionRank, GivesTheShortestStepOfVeryManyRows) {
  std::uint64_t number = 10000;
#ifdef KELVANE_SANITIZED
  const std::vector<std::size_t> sizes = {10000};
#else
  const std::vector<std::size_t> sizes = {10000, 10001, 20000, 50000, 100000, 200000};
#endif
  for (const std::size_t m : sizes) {
    for (int repetition = 0; repetition < 4; ++repetition) expect_minimum_norm(++number, m);
  }
}

TEST(MatrixSolutionRank, IsThatOfTheReference) {
  Random random(seed);
  const auto system = support::system_of(1000, {3.0, 2.0, 1.0, 0.1, 0.0, 0.0}, {1, 1, 1, 1, 1, 1}, 5.0, random);
  const auto expected = reference::least_squares(system.rows(), system.right_hand_side(), system.m());
  ASSERT_EQ(expected.rank, 4U);
  const std::vector<double> dx = support::step_of(system);
  EXPECT_LE(support::distance_between(dx, expected.solution), 1e-12 * support::length_of(dx));
}

// No unit decides about the rank: a column may be as small next to the others as cv::solve would still see it.
TEST(MatrixSolutionRank, IsTheSameInAnyUnitOfAColumn) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed + 5, number);
    SCOPED_TRACE(which);
    support::Linear_system system = support::random_system(3000, 6, which.random);
    const std::vector<double> dx = support::step_of(system);
    const std::size_t chosen = number % 6;
    const int power = -static_cast<int>(which.random.uniform(0.0, 48.0));
    for (double& entry : system.columns[chosen]) entry = std::scalbn(entry, power);
    std::vector<double> scaled = support::step_of(system);
    scaled[chosen] = std::scalbn(scaled[chosen], power);
    EXPECT_LE(support::distance_between(scaled, dx), 1e-12 * support::length_of(dx)) << "2^" << power;
  }
}

// What cv::solve would not see of a column stays unseen, however much of it lies along another one.
TEST(MatrixSolutionRank, LeavesOutWhatIsFarBelowTheWhole) {
  Random random(seed + 6);
  support::Linear_system system = support::random_system(3000, 3, random);
  const double usual = support::length_of(support::step_of(system));
  for (const double size : {1e-16, 1e-18}) {
    for (std::size_t i = 0; i < system.m(); ++i) {
      system.columns[2][i] = size * (1000.0 * system.columns[0][i] + random.uniform(-1.0, 1.0));
    }
    EXPECT_LE(support::length_of(support::step_of(system)), 10.0 * usual) << size;
  }
}

}  // namespace
