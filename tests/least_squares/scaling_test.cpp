// SPDX-License-Identifier: BSD-3-Clause
// Which systems need scaling, and that scaling takes nothing but powers of two.
#include "least_squares/scaling.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "least_squares/triangle.h"
#include "support/cases.h"
#include "support/linear_systems.h"

namespace {

using support::Linear_system;
using support::Random;

constexpr std::uint64_t seed = 71293;

/// Entries of J and b, all of the given sizes, and of the columns from `middle` on of another.
Linear_system system_of_sizes(double size_of_J, double size_of_b, double size_of_rest, std::size_t middle = 3) {
  Random random(seed);
  Linear_system system = support::random_system(100, 6, random);
  for (std::size_t c = 0; c <= 6; ++c) {
    for (double& entry : system.columns[c]) entry *= c == 6 ? size_of_b : c < middle ? size_of_J : size_of_rest;
  }
  return system;
}

bool is_well_scaled(double size_of_J, double size_of_b, double size_of_rest) {
  kelvane::Block block;
  block.resize(6);
  kelvane::Triangle triangle;
  triangle.start(6);
  support::visit_blocks(system_of_sizes(size_of_J, size_of_b, size_of_rest), 40, block,
                        [&](std::size_t num_rows) { triangle.absorb(block, num_rows); });
  return kelvane::is_well_scaled(triangle.entries(), 6);
}

TEST(Scale, IsGoodWhereProductsOfSquaresKeepTheirDigits) {
  for (const double size : {1e-58, 1e-20, 1.0, 1e20, 1e67}) {
    EXPECT_TRUE(is_well_scaled(size, 1.0, size)) << size;
    EXPECT_TRUE(is_well_scaled(1.0, size, 1.0)) << size;
    EXPECT_TRUE(is_well_scaled(1.0, 1.0, size)) << size;
  }
  for (const double size : {0.0, 1e-320, 1e-200, 1e-100, 1e-78, 1e78, 1e130, 1e200, 1e308}) {
    EXPECT_FALSE(is_well_scaled(size, 1.0, size)) << size;
    EXPECT_FALSE(is_well_scaled(1.0, size, 1.0)) << size;
    EXPECT_FALSE(is_well_scaled(1.0, 1.0, size)) << size;
  }
}

TEST(Scale, IsBadWhereSomethingIsNotFinite) {
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_FALSE(is_well_scaled(bad, 1.0, 1.0));
    EXPECT_FALSE(is_well_scaled(1.0, bad, 1.0));
    EXPECT_FALSE(is_well_scaled(1.0, 1.0, bad));
  }
}

struct Scaled {
  Linear_system system;
  kelvane::Scaling scaling;
  kelvane::Block block;

  Scaled(double size_of_J, double size_of_b, double size_of_rest, std::size_t middle)
      : system(system_of_sizes(size_of_J, size_of_b, size_of_rest)) {
    block.resize(6);
    scaling.start(6);
    support::visit_blocks(system, 40, block, [&](std::size_t num_rows) { scaling.measure(block, num_rows); });
    scaling.choose(middle);
  }
};

TEST(Scaling, BringsEachPartBetweenOneAndTwo) {
  Scaled scaled(1e-300, 1e200, 1e13, 3);
  EXPECT_TRUE(scaled.scaling.is_finite());
  double largest[3] = {};
  support::visit_blocks(scaled.system, 40, scaled.block, [&](std::size_t num_rows) {
    scaled.scaling.apply(scaled.block, num_rows);
    for (std::size_t c = 0; c <= 6; ++c) {
      for (std::size_t i = 0; i < num_rows; ++i) {
        double& of_part = largest[c == 6 ? 2 : c / 3];
        of_part = std::fmax(of_part, std::abs(scaled.block.column(c)[i]));
      }
    }
  });
  for (const double entry : largest) {
    EXPECT_GE(entry, 1.0);
    EXPECT_LT(entry, 2.0);
  }
  for (std::size_t c = 1; c < 6; ++c) EXPECT_EQ(scaled.scaling.power(c), scaled.scaling.power(c / 3 * 3)) << c;
}

TEST(Scaling, TreatsJAsOneWithoutAMiddle) {
  const Scaled scaled(1e-100, 1.0, 1e50, 0);
  for (std::size_t c = 1; c < 6; ++c) EXPECT_EQ(scaled.scaling.power(c), scaled.scaling.power(0)) << c;
  EXPECT_NEAR(scaled.scaling.power(0), std::ilogb(1e50), 1);
}

TEST(Scaling, SeesWhatIsNotFiniteAndLeavesZerosAlone) {
  EXPECT_FALSE(Scaled(std::numeric_limits<double>::quiet_NaN(), 1.0, 1.0, 3).scaling.is_finite());
  EXPECT_FALSE(Scaled(1.0, std::numeric_limits<double>::infinity(), 1.0, 3).scaling.is_finite());
  const Scaled zeros(0.0, 0.0, 0.0, 3);
  EXPECT_TRUE(zeros.scaling.is_finite());
  for (std::size_t c = 0; c <= 6; ++c) EXPECT_EQ(zeros.scaling.power(c), 0);
}

}  // namespace
