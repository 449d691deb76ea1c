// SPDX-License-Identifier: BSD-3-Clause
// The running triangle: many pieces give what one gives, memory serves again, and extreme sizes are noticed.
#include "fw_opt/row_reduction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/cases.h"
#include "support/instruction_sets.h"
#include "support/linear_systems.h"
#include "support/matchers.h"
#include "support/reference_svd.h"

namespace {

using support::Case;
using support::Linear_system;
using support::Random;

constexpr std::uint64_t seed = 70533;
constexpr std::size_t max_rows = fw::Row_sink::max_rows;
constexpr double rounding = 1e-13;  // of systems of condition below 100, relative to the largest entry

std::vector<double> triangle_of(fw::Row_reduction& reduction, const Linear_system& system, std::size_t piece) {
  reduction.start(system.n());
  support::System_rows(system, piece).send(reduction);
  return {reduction.triangle(), reduction.triangle() + system.n() * (system.n() + 1)};
}

/// The x of least |R x - c|.
reference::Least_squares minimiser(const std::vector<double>& triangle, std::size_t n) {
  reference::Matrix R(n, reference::Vector(n));
  reference::Vector c(n);
  for (std::size_t i = 0; i < n; ++i) {
    std::copy_n(triangle.data() + i * (n + 1), n, R[i].data());
    c[i] = triangle[i * (n + 1) + n];
  }
  return reference::least_squares(R, c);
}

class RowReduction : public support::Every_instruction_set {};
INSTANTIATE_TEST_SUITE_P(All, RowReduction, testing::ValuesIn(fw::instruction_sets), support::name_of_instruction_set);

TEST_P(RowReduction, OfManyPiecesIsThatOfOne) {
  fw::Row_reduction reduction(GetParam());
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const std::size_t n = 1 + number % 20;
    const auto m = static_cast<std::size_t>(which.random.uniform(3.0 * static_cast<double>(n), max_rows + 1.0));
    const Linear_system system = support::random_system(m, n, which.random);
    const std::vector<double> whole = triangle_of(reduction, system, max_rows);
    for (std::size_t piece = 8; piece < m; piece += 24) {
      EXPECT_TRUE(support::is_close(triangle_of(reduction, system, piece), whole, rounding)) << "pieces of " << piece;
    }
  }
}

TEST_P(RowReduction, HasTheSolutionOfTheWholeSystem) {
  fw::Row_reduction reduction(GetParam());
  for (std::uint64_t number = 0; number < 40; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const std::size_t n = 1 + number % 12;
    const Linear_system system = support::random_system(100 + 50 * number, n, which.random);
    const auto expected = reference::least_squares(system.rows(), system.right_hand_side());
    for (const std::size_t piece : {8U, 16U, 120U, 232U, 240U}) {
      const auto actual = minimiser(triangle_of(reduction, system, piece), n);
      for (std::size_t i = 0; i < n; ++i) {
        EXPECT_NEAR(static_cast<double>(actual.solution[i]), static_cast<double>(expected.solution[i]), rounding);
      }
    }
  }
}

TEST_P(RowReduction, UsesItsMemoryAgainWithoutATrace) {
  fw::Row_reduction reduction(GetParam());
  Random random(seed + 2);
  for (const std::size_t n : {7U, 3U, 20U, 6U, 9U, 1U, 20U, 7U}) {
    SCOPED_TRACE(n);
    const Linear_system system = support::random_system(700, n, random);
    fw::Row_reduction fresh(GetParam());
    EXPECT_TRUE(support::are_same_bits(triangle_of(reduction, system, 200), triangle_of(fresh, system, 200)));
    reduction.start(n);
    const auto is_zero = [](double entry) { return entry == 0.0; };
    EXPECT_TRUE(std::all_of(reduction.triangle(), reduction.triangle() + n * (n + 1), is_zero));
  }
}

TEST(RowReductionMemory, IsAlignedAndHasRoomForAPiece) {
  for (std::size_t n = 1; n <= 40; ++n) {
    fw::Row_reduction reduction;
    reduction.start(n);
    EXPECT_GE(reduction.column_stride(), max_rows);
    for (std::size_t c = 0; c <= n; ++c) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(reduction.column(c)) % fw::cache_line, 0U) << c << " of " << n;
    }
  }
}

TEST(RowReductionNorm, CountsTheTriangleButNotTheRightHandSide) {
  Random random(seed + 3);
  for (std::size_t n = 1; n <= 12; ++n) {
    Linear_system system = support::random_system(50, n, random);
    for (double& entry : system.b()) entry *= 1e6;
    fw::Row_reduction reduction;
    triangle_of(reduction, system, max_rows);
    double expected = 0.0;  // a rotation keeps the sum of squares of J
    for (std::size_t c = 0; c < n; ++c) expected += support::product_of(system.columns[c], system.columns[c]);
    EXPECT_NEAR(reduction.squared_norm(), expected, rounding * expected);
  }
}

/// Whether J and b, all entries of the given size, are fit to be solved as they are.
bool is_well_scaled(double size_of_J, double size_of_b) {
  Random random(seed + 4);
  Linear_system system = support::random_system(100, 6, random);
  for (auto& column : system.columns) {
    for (double& entry : column) entry *= &column == &system.columns.back() ? size_of_b : size_of_J;
  }
  fw::Row_reduction reduction;
  triangle_of(reduction, system, 40);
  return reduction.is_well_scaled(reduction.squared_norm());
}

TEST(RowReductionScale, IsGoodWhereFourthPowersAndProductsKeepTheirDigits) {
  for (const double size : {1e-58, 1e-20, 1.0, 1e20, 1e67}) EXPECT_TRUE(is_well_scaled(size, 1.0)) << size;
  for (const double size : {0.0, 1e-320, 1e-200, 1e-100, 1e-78, 1e78, 1e130, 1e200, 1e308}) {
    EXPECT_FALSE(is_well_scaled(size, 1.0)) << size;
  }
  for (const double size : {1e-130, 1.0, 1e200}) EXPECT_TRUE(is_well_scaled(1.0, size)) << size;
  for (const double size : {0.0, 1e-320, 1e-300, 1e-200}) EXPECT_FALSE(is_well_scaled(1.0, size)) << size;
}

TEST(RowReductionScale, IsBadWhereSomethingIsNotFinite) {
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_FALSE(is_well_scaled(bad, 1.0));
    EXPECT_FALSE(is_well_scaled(1.0, bad));
  }
  EXPECT_FALSE(is_well_scaled(1e10, 1e305));  // the products overflow
}

}  // namespace
