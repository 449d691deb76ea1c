// SPDX-License-Identifier: BSD-3-Clause
// Systems of extreme size: the step follows powers of two exactly; nothing that is not finite is solved.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/cases.h"
#include "support/linear_systems.h"

namespace {

using support::Linear_system;
using support::Random;

constexpr std::uint64_t seed = 70993;
constexpr double eps = std::numeric_limits<double>::epsilon();
constexpr std::size_t m = 300;

/// J times 2^of_J, b times 2^of_b.
Linear_system scaled(Linear_system system, int of_J, int of_b) {
  for (auto& column : system.columns) {
    for (double& entry : column) entry = std::scalbn(entry, &column == &system.columns.back() ? of_b : of_J);
  }
  return system;
}

/// Entries of at least 1/16, so that no power of two in these tests takes them to where doubles have fewer digits.
Linear_system without_small_entries(std::size_t n, Random& random) {
  Linear_system system = support::random_system(m, n, random);
  for (auto& column : system.columns) {
    for (double& entry : column) entry += std::copysign(0.0625, entry);
  }
  return system;
}

TEST(MatrixSolutionScaling, FollowsPowersOfTwoToTheLastBit) {
  for (const std::size_t n : {1U, 3U, 6U, 7U, 9U}) {
    Random random(seed + n);
    const Linear_system system = without_small_entries(n, random);
    const std::vector<double> dx = support::step_of(system);
    for (int of_J = -1000; of_J <= 1000; of_J += 50) {
      for (int of_b = -1000; of_b <= 1000; of_b += 50) {
        if (std::abs(of_b - of_J) > 1000) continue;  // no double holds that step with all its digits
        std::vector<double> expected = dx;
        for (double& entry : expected) entry = std::scalbn(entry, of_b - of_J);
        EXPECT_TRUE(support::are_same_bits(support::step_of(scaled(system, of_J, of_b)), expected))
            << n << " unknowns, J times 2^" << of_J << ", b times 2^" << of_b;
      }
    }
  }
}

TEST(MatrixSolutionScaling, FollowsPowersOfTen) {
  Random random(seed);
  const Linear_system system = without_small_entries(6, random);
  const std::vector<double> dx = support::step_of(system);
  for (int power = -300; power <= 300; power += 10) {
    Linear_system both = system;
    for (auto& column : both.columns) {
      for (double& entry : column) entry *= std::pow(10.0, power);
    }
    EXPECT_LE(support::distance_between(support::step_of(both), dx), 1e-14 * support::length_of(dx)) << "10^" << power;
  }
}

TEST(MatrixSolutionScaling, HoldsForLowerRank) {
  Random random(seed + 1);
  const Linear_system system = support::system_of(m, {4.0, 1.0, 0.5, 0.0}, {1.0, 1.0, 1.0, 1.0}, 1.0, random);
  const auto expected = reference::least_squares(system.rows(), system.right_hand_side(), m);
  for (const int power : {-950, -450, -380, 0, 380, 450, 1000}) {
    const std::vector<double> dx = support::step_of(scaled(system, power, power));
    EXPECT_LE(support::distance_between(dx, expected.solution), 1e-13 * support::length_of(dx)) << "2^" << power;
  }
}

TEST(MatrixSolutionScaling, ManagesColumnsOfVeryDifferentSize) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    SCOPED_TRACE(number);
    Random random(seed + number);
    Linear_system system = support::random_system(m, 7, random);
    for (std::size_t c = 0; c < 7; ++c) {
      const double factor = random.magnitude(-5.0, 5.0);
      for (double& entry : system.columns[c]) entry *= factor;
    }
    const auto expected = reference::least_squares(system.rows(), system.right_hand_side(), m);
    ASSERT_EQ(expected.rank, 7U);
    const double k = static_cast<double>(expected.condition);
    const std::vector<double> dx = support::step_of(system);
    // The smallest column decides about the length of the step; k^2 r / (s d) is about k then.
    EXPECT_LE(support::distance_between(dx, expected.solution), 20.0 * eps * k * support::length_of(dx));
  }
}

TEST(MatrixSolutionScaling, LeavesOutColumnsThatAreTooSmall) {
  for (const double tiny : {1e-20, 1e-100, 1e-150, 1e-200, 1e-310}) {
    for (std::size_t c = 0; c < 6; ++c) {
      Random random(seed + 2);
      Linear_system system = support::random_system(m, 6, random);
      for (double& entry : system.columns[c]) entry *= tiny;
      const auto expected = reference::least_squares(system.rows(), system.right_hand_side(), m);
      const std::vector<double> dx = support::step_of(system);
      EXPECT_LE(support::distance_between(dx, expected.solution), 1e-13 * support::length_of(dx)) << c << ": " << tiny;
    }
  }
}

TEST(MatrixSolutionScaling, GivesNoStepForAJacobianOfZeros) {
  Random random(seed + 3);
  for (const std::size_t n : {1U, 6U, 7U, 9U}) {
    Linear_system system = support::random_system(m, n, random);
    for (std::size_t c = 0; c < n; ++c) system.columns[c].assign(m, 0.0);
    EXPECT_EQ(support::step_of(system), std::vector<double>(n, 0.0));
    system.b().assign(m, 0.0);
    EXPECT_EQ(support::step_of(system), std::vector<double>(n, 0.0));
  }
}

TEST(MatrixSolutionScaling, SolvesWhereAllEntriesAreAsSmallAsCanBe) {
  constexpr double smallest = std::numeric_limits<double>::denorm_min();
  Random random(seed + 4);
  Linear_system system = support::random_system(m, 6, random);
  for (auto& column : system.columns) {
    for (double& entry : column) entry = std::round(100.0 * entry);
  }
  const std::vector<double> dx = support::step_of(system);
  for (auto& column : system.columns) {
    for (double& entry : column) entry *= smallest;
  }
  EXPECT_TRUE(support::are_same_bits(support::step_of(system), dx));
}

TEST(MatrixSolutionScaling, GivesNothingButNanForWhatIsNotFinite) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity}) {
    for (const std::size_t n : {1U, 6U, 7U, 9U}) {
      Random random(seed + n);
      const Linear_system system = support::random_system(m, n, random);
      for (std::size_t c = 0; c <= n; ++c) {
        for (const std::size_t row : {0U, 100U, 239U, 240U, 299U}) {
          Linear_system broken = system;
          broken.columns[c][row] = bad;
          for (const double entry : support::step_of(broken)) {
            EXPECT_TRUE(std::isnan(entry)) << bad << " at (" << row << ", " << c << ")";
          }
        }
      }
      for (const double entry : support::step_of(system)) EXPECT_TRUE(std::isfinite(entry));
    }
  }
}

TEST(MatrixSolutionScaling, SolvesWhereSquaresOverflowNextToSmallColumns) {
  Random random(seed + 5);
  const Linear_system system = support::system_of(m, {1.0, 1e-3, 1e-6}, {1.0, 1.0, 1.0}, 1e-3, random);
  const std::vector<double> dx = support::step_of(system);
  for (const int power : {510, 664, 1000}) {  // around 1e153, 1e200, 1e301
    const std::vector<double> other = support::step_of(scaled(system, power, power));
    EXPECT_LE(support::distance_between(other, dx), 1e-9 * support::length_of(dx)) << "2^" << power;
  }
}

}  // namespace
