// SPDX-License-Identifier: BSD-3-Clause
// On which side of the limits the rank of a small triangle changes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "least_squares/small_triangles.h"
#include "support/matchers.h"

namespace {

using small_triangles::diagonal, small_triangles::eps, small_triangles::reduced;
using small_triangles::Triangle;
using support::Case;
using Units = kelvane::Small_system::Units;

constexpr std::uint64_t seed = 70657;

// A diagonal entry by itself is a unit, and no unit decides; far below the rest cv::solve sees nothing of it.
TEST(SmallSystemLimits, DividesByADiagonalEntryUntilNothingIsSeenOfIt) {
  for (std::size_t n = 2; n <= 10; ++n) {
    for (std::size_t place = 0; place < n; ++place) {
      for (const double entry : {1e-3, 1e-9, 1e-14}) {
        std::vector<double> expected(n, 1.0);
        expected[place] = 1.0 / entry;
        EXPECT_TRUE(support::is_close(diagonal(n, place, entry).solution(200000), expected, 1e-15)) << entry;
      }
      std::vector<double> expected(n, 1.0);
      expected[place] = 0.0;
      EXPECT_EQ(diagonal(n, place, 2.0 * eps).solution(1000), expected);
      EXPECT_EQ(diagonal(n, place, 1e-150).solution(1000), expected);
    }
  }
}

/// The step along the smallest singular value for one just above and one just below the limit.
void expect_limit(std::size_t n, std::size_t place, std::size_t num_rows, Units units, double limit) {
  SCOPED_TRACE(testing::Message() << n << " unknowns, place " << place << ", " << num_rows << " rows");
  const double above = limit * (1.0 + 1e-6);
  std::vector<double> expected(n, 1.0);
  expected[place] = 1.0 / above;
  const std::vector<double> dx = diagonal(n, place, above).solution(num_rows, units);
  for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(dx[i], expected[i], 10.0 * eps * expected[i]);
  expected[place] = 0.0;
  EXPECT_EQ(diagonal(n, place, limit * (1.0 - 1e-6)).solution(num_rows, units), expected);
}

TEST(SmallSystemLimits, SeesOfAColumnByItselfWhatCvSolveSees) {
  for (std::size_t n = 2; n <= 10; ++n) {
    const double limit = 2.0 * eps * static_cast<double>(n - 1);  // of the sum of the singular values
    for (const std::size_t num_rows : {n, std::size_t{100}, std::size_t{200000}}) {
      for (std::size_t place = 0; place < n; ++place) expect_limit(n, place, num_rows, Units::each, limit);
    }
  }
}

// A column beside others of its unit keeps its length, so that the limit of the singular values decides.
TEST(SmallSystemLimits, CutsAtTwiceTheSumOfTheSingularValuesWhereThereAreFewRows) {
  for (std::size_t n = 5; n <= 10; ++n) {
    const double limit = 2.0 * eps * static_cast<double>(n - 1);
    for (std::size_t place = 0; place < n; ++place) {
      expect_limit(n, place, n, Units::last_three, limit);
      expect_limit(n, place, 2 * n - 2, Units::last_three, limit);
    }
  }
}

TEST(SmallSystemLimits, CutsWhereTheRoundingOfManyRowsLies) {
  for (std::size_t n = 5; n <= 10; ++n) {
    for (const std::size_t num_rows : {2 * n - 1, std::size_t{100}, std::size_t{3000}, std::size_t{200000}}) {
      const double limit = static_cast<double>(num_rows) * eps;
      for (std::size_t place = 0; place < n; ++place) expect_limit(n, place, num_rows, Units::last_three, limit);
    }
  }
}

/// Whether the columns have one power of two, so that none is brought to another size.
bool is_of_one_size(const Triangle& triangle) {
  std::vector<double> squared_lengths(triangle.n + 1);
  kelvane::squared_column_lengths(triangle.entries.data(), triangle.n, squared_lengths.data());
  const auto power = [&](std::size_t j) { return std::ilogb(std::sqrt(squared_lengths[j])); };
  for (std::size_t j = 1; j < triangle.n; ++j) {
    if (power(j) != power(0)) return false;
  }
  return true;
}

void expect_cut_in_any_direction(std::size_t num_rows) {
  constexpr double largest = 1.9;  // so that most columns are longer than 1, and none reaches 2
  const double limit = static_cast<double>(num_rows) * eps * largest;
  std::size_t num_compared = 0;
  for (std::uint64_t number = 0; number < 300; ++number) {
    SCOPED_TRACE(Case(seed + 3, number));
    for (const double part : {1.01, 0.99}) {
      Case which(seed + 3, number);
      const std::size_t n = 2 + number % 9;
      std::vector<double> sigma(n, largest);
      sigma[n / 2] = part * limit;
      const Triangle triangle = reduced(50, sigma, which.random);
      if (!is_of_one_size(triangle)) continue;
      ++num_compared;
      const double length = support::length_of(triangle.solution(num_rows));
      if (part > 1.0) {
        EXPECT_GT(length, 0.9 / limit);
      } else {
        EXPECT_LT(length, 10.0);
      }
    }
  }
  EXPECT_GE(num_compared, 400U);
}

// The limit lies far above the rounding of R.
TEST(SmallSystemLimits, CutsInAnyDirection) { expect_cut_in_any_direction(1'000'000); }

// And here above what back-substitution could do with all its digits.
TEST(SmallSystemLimits, CutsInAnyDirectionOfABillionRows) { expect_cut_in_any_direction(1'000'000'000); }

}  // namespace
