// SPDX-License-Identifier: BSD-3-Clause
// Radii moved and brought back.
#include "model_files/radial_lens.h"

#include <cmath>
#include <limits>

namespace {

using kelvane::Radial_lens;

double moved(double r, double k1, double k2) { return r * (1 + r * r * (k1 + r * r * k2)); }

TEST(RadialLens, FindsTheRadiusThatWasMoved) {
  const double lenses[][2] = {{-0.2, 0}, {0.15, 0},      {-0.5, 0.4}, {0.3, -0.2},
                              {0, 0.5},  {1e-8, -2e-13}, {3, 5},      {-0.01, 0}};
  for (const auto& k : lenses) {
    const Radial_lens lens(k[0], k[1]);
    for (double r = 1e-12; r < 0.7; r = 1.3 * r + 1e-3) {
      EXPECT_NEAR(lens.straight(moved(r, k[0], k[1])), r,
                  1e-14 * r / std::fmin(1, 1 + 3 * k[0] * r * r + 5 * k[1] * r * r * r * r))
          << k[0] << ' ' << k[1] << ' ' << r;
    }
  }
}

// k1 = -1/3: the moved radius grows up to 2/3, where r = 1.
TEST(RadialLens, EndsWhereItTurnsBack) {
  const Radial_lens lens(-1.0 / 3, 0);
  EXPECT_NEAR(lens.straight(2.0 / 3 - 1e-12), 1, 2e-6);
  EXPECT_TRUE(std::isnan(lens.straight(2.0 / 3 + 1e-12)));
  EXPECT_TRUE(std::isnan(lens.straight(5)));
  EXPECT_NEAR(moved(Radial_lens(-0.05, 0).straight(1.7), -0.05, 0), 1.7, 1e-14);  // near the end, at 1.72
  EXPECT_TRUE(std::isnan(Radial_lens(-0.5, 0.1).straight(0.7)));  // beyond 0.6; it grows again from the square of 2 on
  EXPECT_NEAR(lens.straight(399.0 / 600) - std::pow(lens.straight(399.0 / 600), 3) / 3, 399.0 / 600, 1e-15);
}

TEST(RadialLens, ComesToAnEndWithAnything) {
  const double values[] = {
      0, 1e-300, 1e-8, 0.5, 1, 1e8, 1e150, 1e300, std::numeric_limits<double>::infinity(), std::nan("")};
  for (const double k1 : values) {
    for (const double k2 : values) {
      for (const double sign : {-1.0, 1.0}) {
        const Radial_lens lens(sign * k1, k2);
        const Radial_lens other(k1, sign * k2);
        for (const double r : values) {
          EXPECT_FALSE(lens.straight(r) < 0 || other.straight(r) < 0);
        }
      }
    }
  }
  EXPECT_EQ(Radial_lens(0.1, 0).straight(0), 0);
  EXPECT_TRUE(Radial_lens(0, 0).is_straight());
}

}  // namespace
