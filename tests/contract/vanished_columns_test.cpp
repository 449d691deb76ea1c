// SPDX-License-Identifier: BSD-3-Clause
// Steps where columns of the Jacobian are nothing but rounding: no such column is brought to the size of the others.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "contract/refinement.h"
#include "support/cases.h"

namespace {

using Vector = std::vector<double>;

constexpr std::uint64_t seed = 20261122;
constexpr double longest = 10.0;  // of a step that is known to be right

/// Twenty points that a camera without rotation sees from (0, 0, -8).
struct Scene {
  Vector points, pixels;

  Scene() {
    support::Random random(seed);
    for (int i = 0; i < 20; ++i) {
      const double X[] = {random.uniform(-1, 1), random.uniform(-1, 1), random.uniform(-1, 1)};
      points.insert(points.end(), X, X + 3);
      for (int k = 0; k < 2; ++k) pixels.push_back(800 * X[k] / (X[2] + 8) + 300 + random.uniform(-0.05, 0.05));
    }
  }

  /// The step of one iteration from these rotation entries.
  Vector step(int type, const Vector& rotation, bool by_differences) const {
    Vector parameters = rotation;
    parameters.insert(parameters.end(), {0, 0, -8, 800, 300, 300});
    const double one_iteration[] = {1, 0, -1e30, by_differences ? 1.0 : 0.0};
    const kelvane::contract::Arguments arguments{
        kelvane::find_rotation_type(type), 20, parameters.data(), points.data(), pixels.data(), one_iteration, nullptr};
    Vector dx = kelvane::contract::refine(arguments, kelvane::contract::Settings(arguments));
    for (std::size_t d = 0; d < dx.size(); ++d) dx[d] -= parameters[d];
    return dx;
  }
};

double length(const Vector& v) {
  double squared = 0.0;
  for (const double entry : v) squared += entry * entry;
  return std::sqrt(squared);
}

/// An axis of that length, then the angle.
Vector angle_axis(double axis_length, double angle) {
  return {axis_length / 3, 2 * axis_length / 3, 2 * axis_length / 3, angle};
}

class VanishedColumns : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Types, VanishedColumns, testing::Values(1, -3));

TEST_P(VanishedColumns, MakeNoLongStepByDifferencesAtFullTurns) {
  const Scene scene;
  const double usual = length(scene.step(GetParam(), angle_axis(1, 0.0), true));
  for (int turns = 1; turns <= 3; ++turns) {
    EXPECT_LE(length(scene.step(GetParam(), angle_axis(1, 2 * support::pi * turns), true)), longest * usual) << turns;
  }
}

TEST(VanishedColumnsOfType3, MakeNoLongStepNearNoRotation) {
  const Scene scene;
  const double usual = length(scene.step(3, {0, 0, 0, 1}, false));
  for (const double e : {1e-16, 3e-16, 1e-15}) {
    EXPECT_LE(length(scene.step(3, {e, -2 * e, 3 * e, 1}, false)), longest * usual) << e;
  }
}

}  // namespace
