// SPDX-License-Identifier: BSD-3-Clause
// Tests of the helpers for single values.
#include "fw_tools/scalar_helpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Eq, IncludesItsBound) {
  EXPECT_TRUE(fw::eq(1.0, 1.25, 0.25));
  EXPECT_TRUE(fw::eq(1.25, 1.0, 0.25));
  EXPECT_TRUE(fw::eq(3.0, 3.0, 0.0));
}

TEST(Eq, FailsJustAboveItsBound) {
  EXPECT_FALSE(fw::eq(1.0, std::nextafter(1.25, 2.0), 0.25));
  EXPECT_FALSE(fw::eq(std::nextafter(1.25, 2.0), 1.0, 0.25));
  EXPECT_FALSE(fw::eq(3.0, std::nextafter(3.0, 4.0), 0.0));
}

TEST(Eq, ComparesTheRoundedDifference) {
  // 1 - 1.0001 is just below 0.0001 in size, 2 - 2.0001 just above.
  EXPECT_TRUE(fw::eq(1.0, 1.0001, 0.0001));
  EXPECT_FALSE(fw::eq(2.0, 2.0001, 0.0001));
  EXPECT_FALSE(fw::eq(1.0, 1.00010001, 0.0001));
}

TEST(Eq, IsFalseForAnyNan) {
  EXPECT_FALSE(fw::eq(nan, 1.0, 10.0));
  EXPECT_FALSE(fw::eq(1.0, nan, 10.0));
  EXPECT_FALSE(fw::eq(nan, nan, infinity));
  EXPECT_FALSE(fw::eq(1.0, 1.0, nan));
  EXPECT_FALSE(fw::eq(infinity, infinity, 1.0));  // their difference is NaN
}

TEST(Eq, IsFalseForANegativeTolerance) { EXPECT_FALSE(fw::eq(1.0, 1.0, -1e-300)); }

TEST(Square, MultipliesAValueWithItself) {
  EXPECT_EQ(fw::square(-3.0), 9.0);
  EXPECT_EQ(fw::square(0.1), 0.1 * 0.1);
  EXPECT_EQ(fw::square(-7), 49);
  EXPECT_TRUE(std::isnan(fw::square(nan)));
}

TEST(MaxPortable, TakesTheLargerValue) {
  EXPECT_EQ(fw::max_portable(1.0, 2.0), 2.0);
  EXPECT_EQ(fw::max_portable(2.0, 1.0), 2.0);
  EXPECT_EQ(fw::max_portable(-infinity, -1.0), -1.0);
}

TEST(MaxPortable, TakesTheFirstOfATie) {
  EXPECT_FALSE(std::signbit(fw::max_portable(0.0, -0.0)));
  EXPECT_TRUE(std::signbit(fw::max_portable(-0.0, 0.0)));
}

TEST(MaxPortable, TakesTheFirstWhenEitherIsNan) {
  EXPECT_EQ(fw::max_portable(1.0, nan), 1.0);
  EXPECT_TRUE(std::isnan(fw::max_portable(nan, 1.0)));
}

}  // namespace
