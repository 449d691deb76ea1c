// SPDX-License-Identifier: BSD-3-Clause
// First positive roots.
#include "cameras/polynomial.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/cases.h"

namespace {

using kelvane::first_root, kelvane::Polynomial, kelvane::product;

TEST(FirstRoot, IsTheLeastOfThoseItWasMadeOf) {
  support::Random random(18003);
  for (int i = 0; i < 2000; ++i) {
    Polynomial p{1.0};
    double least = 1e9;
    for (int k = 0; k < 6; ++k) {
      const double root = random.magnitude(-2, 3) * (k % 2 == 0 ? 1.0 : -1.0);
      p = product(p, Polynomial{1.0, -1.0 / root});
      if (root > 0.0) least = std::min(least, root);
    }
    p = product(p, Polynomial{1.0, 0.0, random.magnitude(-3, 3)});  // two that are not real
    EXPECT_NEAR(first_root(p, 1e13), least, 1e-6 * least) << i;
    EXPECT_EQ(first_root(p, 0.5 * least), 0.5 * least);
  }
}

TEST(FirstRoot, IsTheLimitWhereThereIsNone) {
  EXPECT_EQ(first_root({1.0}, 7.0), 7.0);
  EXPECT_EQ(first_root({1.0, 0.0, 0.0}, 7.0), 7.0);
  EXPECT_EQ(first_root({1.0, 2.0, 3.0}, 7.0), 7.0);
  EXPECT_EQ(first_root({1.0, -1.0, 1.0}, 7.0), 7.0);
}

TEST(FirstRoot, IsNotBeyondWhatOverflows) {
  EXPECT_EQ(first_root({1.0, std::nan("")}, 7.0), 0.0);
  EXPECT_LT(first_root({1.0, HUGE_VAL, -HUGE_VAL}, 7.0), 1e-300);
  EXPECT_LT(first_root({1.0, 0.0, -1e308}, 1e13), 1.1e-154);
}

TEST(FirstRoot, IsAnsweredFromBelow) {
  const Polynomial p{1.0, 0.0, -3.0};
  const double root = first_root(p, 1e13);
  EXPECT_GT(1.0 - 3.0 * root * root, 0.0);
  EXPECT_DOUBLE_EQ(root, std::sqrt(1.0 / 3.0));
}

TEST(FirstRoot, IsNoneOfAPolynomialThatBeginsAtZeroOrBelow) {
  EXPECT_EQ(first_root({}, 7.0), 0.0);
  EXPECT_EQ(first_root({0.0, 1.0}, 7.0), 0.0);
  EXPECT_EQ(first_root({-1.0, 1.0}, 7.0), 0.0);
  EXPECT_EQ(first_root({std::nan(""), 1.0}, 7.0), 0.0);
}

TEST(FirstRoot, EndsWithHostileNumbers) {
  support::Random random(18004);
  for (int i = 0; i < 2000; ++i) {
    Polynomial p{1.0};
    for (int k = 0; k < 14; ++k) p.push_back(random.magnitude(-320, 308) * random.uniform(-1, 1));
    const double root = first_root(p, 1e13);
    EXPECT_GE(root, 0.0);
    EXPECT_LE(root, 1e13);
  }
}

}  // namespace
