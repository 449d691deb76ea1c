// SPDX-License-Identifier: BSD-3-Clause
// What the closed-form Jacobians must satisfy whatever their formulas, and their agreement with the prediction itself.
#include <gtest/gtest.h>

#include <cmath>

#include "framework/jacobian_classes.h"
#include "support/matchers.h"
#include "support/numeric_jacobian.h"
#include "support/tolerance.h"

namespace {

using jacobian_classes::Scene;
using support::Case;

constexpr std::uint64_t seed = 77003;

/// Columns first, first + 1, ... of one row times v, in units of the largest possible result.
double relative_product(const double* row, std::size_t first, const std::vector<double>& v) {
  double product = 0.0;
  double row_squared = 0.0;
  double v_squared = 0.0;
  for (std::size_t i = 0; i < v.size(); ++i) {
    product += row[first + i] * v[i];
    row_squared += row[first + i] * row[first + i];
    v_squared += v[i] * v[i];
  }
  return product / std::sqrt(row_squared * v_squared);
}

template <typename Model>
class CameraPositionGradFuncIdentities : public testing::Test {};
TYPED_TEST_SUITE(CameraPositionGradFuncIdentities, jacobian_classes::All, jacobian_classes::Names);

TYPED_TEST(CameraPositionGradFuncIdentities, MovingTheCentreAlongTheRayLeavesThePixelUnchanged) {
  constexpr std::size_t n_r = TypeParam::n_r;
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const Scene scene = jacobian_classes::random_scene<TypeParam>(which);
    const cv::Mat J = jacobian_classes::closed_form<TypeParam>(scene);
    for (int row = 0; row < J.rows; ++row) {
      const auto& X = scene.points[static_cast<std::size_t>(row / 2)];
      const std::vector<double> ray = {X[0] - scene.x[n_r], X[1] - scene.x[n_r + 1], X[2] - scene.x[n_r + 2]};
      ASSERT_NEAR(relative_product(J.ptr<double>(row), n_r, ray), 0.0, tolerance::identity);
    }
  }
}

template <typename Model>
class RedundantCameraPositionGradFunc : public testing::Test {};
TYPED_TEST_SUITE(RedundantCameraPositionGradFunc, jacobian_classes::Redundant, jacobian_classes::Names);

TYPED_TEST(RedundantCameraPositionGradFunc, LeavesTheLengthOfTheEntriesFree) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed + 1, number);
    // Without a turn every axis does as well, and the columns of the axis are zero: 0 / 0 is no angle between vectors.
    if (TypeParam::type == 1 && which.regime == support::Regime::identity) continue;
    SCOPED_TRACE(which);
    const Scene scene = jacobian_classes::random_scene<TypeParam>(which);
    const cv::Mat J = jacobian_classes::closed_form<TypeParam>(scene);
    const std::vector<double> guarded = TypeParam::guarded(scene.x);
    const std::vector<double> entries(guarded.begin(), guarded.begin() + TypeParam::num_free);
    for (int row = 0; row < J.rows; ++row) {
      ASSERT_NEAR(relative_product(J.ptr<double>(row), 0, entries), 0.0, tolerance::identity) << "row " << row;
    }
  }
}

template <typename Model>
class ExactCameraPositionGradFunc : public testing::Test {};
TYPED_TEST_SUITE(ExactCameraPositionGradFunc, jacobian_classes::Exact, jacobian_classes::Names);

TYPED_TEST(ExactCameraPositionGradFunc, IsTheDerivativeOfThePrediction) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const Scene scene = jacobian_classes::random_scene<TypeParam>(which);
    const Camera_position_opt_func prediction(scene.points, scene.K(), TypeParam::type);
    // A guard moves x by 1e-9, which is seen here, so the prediction is differentiated where the guard leads.
    const std::vector<double> x = TypeParam::guarded(scene.x);
    ASSERT_TRUE(support::is_close(jacobian_classes::closed_form<TypeParam>(scene),
                                  support::numeric_jacobian(prediction, x), tolerance::stencil))
        << "x = " << testing::PrintToString(x);
  }
}

}  // namespace
