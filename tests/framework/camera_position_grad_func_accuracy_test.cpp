// SPDX-License-Identifier: BSD-3-Clause
// The closed-form Jacobians against dual numbers, over all regimes of rotations and at degenerate poses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "framework/jacobian_classes.h"
#include "support/long_round.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using jacobian_classes::Scene;
using support::Case;

constexpr std::uint64_t seed = 20240611;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

double largest(const std::vector<double>& values) {
  double result = 0.0;
  for (const double value : values) result = std::max(result, std::abs(value));
  return result;
}

/// Column c of a point's two rows times factor, for the first `count` columns.
std::vector<double> with_scaled_columns(std::vector<double> rows, std::size_t count, double factor) {
  const std::size_t num_columns = rows.size() / 2;
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] *= i % num_columns < count ? factor : 1.0;
  return rows;
}

template <typename Model>
class CameraPositionGradFuncAccuracy : public testing::Test {
 protected:
  /// Every point's block within the tolerance of its largest entry, the first columns in units of `length`.
  static void expect_agreement(const Scene& scene, std::size_t num_scaled = 0, double length = 1.0) {
    const cv::Mat J = jacobian_classes::closed_form<Model>(scene);
    for (std::size_t i = 0; i < scene.points.size(); ++i) {
      const auto expected =
          with_scaled_columns(jacobian_classes::dual_rows<Model>(scene, scene.points[i]), num_scaled, length);
      const auto actual = with_scaled_columns(jacobian_classes::rows_of_point(J, i), num_scaled, length);
      const double unit = 1.0 / largest(expected);
      EXPECT_TRUE(support::is_close(support::scaled(actual, actual.size(), unit),
                                    support::scaled(expected, expected.size(), unit), tolerance::closed_form))
          << "point " << i << " at x = " << testing::PrintToString(scene.x);
    }
  }

  /// The same entries are finite, and those agree.
  static void expect_same_finite_entries(const Scene& scene) {
    const cv::Mat J = jacobian_classes::closed_form<Model>(scene);
    for (std::size_t i = 0; i < scene.points.size(); ++i) {
      const auto expected = jacobian_classes::dual_rows<Model>(scene, scene.points[i]);
      const auto actual = jacobian_classes::rows_of_point(J, i);
      for (std::size_t k = 0; k < expected.size(); ++k) {
        EXPECT_EQ(std::isfinite(actual[k]), std::isfinite(expected[k]))
            << "entry " << k << " of point " << i << " is " << actual[k] << ", expected " << expected[k]
            << " at x = " << testing::PrintToString(scene.x);
      }
    }
  }

  static Scene scene_at(const std::vector<double>& rotation) {
    support::Random random(seed);
    return jacobian_classes::scene_with_rotation<Model>(rotation, random);
  }
};
TYPED_TEST_SUITE(CameraPositionGradFuncAccuracy, jacobian_classes::All, jacobian_classes::Names);

TYPED_TEST(CameraPositionGradFuncAccuracy, AgreesWithDualNumbersInEveryRegime) {
  for (std::uint64_t number = 0; number < support::count_for_round(4000); ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    this->expect_agreement(jacobian_classes::random_scene<TypeParam>(which));
    if (this->HasFailure()) break;
  }
}

template <typename Model>
class RedundantCameraPositionGradFuncAccuracy : public CameraPositionGradFuncAccuracy<Model> {};
TYPED_TEST_SUITE(RedundantCameraPositionGradFuncAccuracy, jacobian_classes::Redundant, jacobian_classes::Names);

TYPED_TEST(RedundantCameraPositionGradFuncAccuracy, IsTheSameForEntriesOfAnyLength) {
  for (std::uint64_t number = 0; number < support::count_for_round(2000); ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const auto unit = TypeParam::rotation(support::random_angle_axis(which.regime, which.random));
    const double length = which.random.magnitude(-60.0, 60.0);
    const auto rotation = support::scaled(unit, TypeParam::num_free, length);
    this->expect_agreement(jacobian_classes::scene_with_rotation<TypeParam>(rotation, which.random),
                           TypeParam::num_free, length);
    if (this->HasFailure()) break;
  }
}

TYPED_TEST(CameraPositionGradFuncAccuracy, AgreesWithDualNumbersAtSpecialRotations) {
  std::vector<std::vector<double>> vectors = {{0, 0, 0}, {-0.0, 0, 0}, {1e-60, 0, 0}, {0, -1e-60, 1e-60}, {0, 0, 1e-9}};
  for (const double scalar : {0.0, 1e-3, 1.0, -1.0, 2.0, 1e9}) {
    for (const auto& vector : vectors) {
      std::vector<double> rotation = vector;
      if (TypeParam::n_r == 4) rotation.push_back(scalar);
      if (TypeParam::type == 1 && vector[0] == 0.0 && vector[1] == 0.0 && vector[2] == 0.0) continue;  // not a rotation
      SCOPED_TRACE(testing::PrintToString(rotation));
      this->expect_agreement(this->scene_at(rotation));
    }
  }
}

TYPED_TEST(CameraPositionGradFuncAccuracy, IsFiniteWhereDualNumbersAreAtDegenerateRotations) {
  const Scene ordinary = this->scene_at(TypeParam::rotation({0.6, 0.0, 0.8, 0.3}));
  for (std::size_t entry = 0; entry < ordinary.x.size(); ++entry) {
    for (const double value : {not_a_number, infinity, -infinity}) {
      Scene scene = ordinary;
      scene.x[entry] = value;
      this->expect_same_finite_entries(scene);
    }
  }
  for (const double angle_or_scalar : {0.0, 1.0}) {
    Scene scene = ordinary;
    std::fill_n(scene.x.begin(), 3, 0.0);
    if (TypeParam::n_r == 4) scene.x[3] = angle_or_scalar;
    this->expect_same_finite_entries(scene);
  }
}

TYPED_TEST(CameraPositionGradFuncAccuracy, IsFiniteForAllPointsButTheOneAtDepthZero) {
  // The turn about the optical axis leaves the depth Z - t3 exact, also where the guard replaces no entry.
  Scene scene = this->scene_at(TypeParam::rotation({0.0, 0.0, 1.0, 0.5}));
  const double* t = scene.x.data() + TypeParam::n_r;
  scene.points = {
      {t[0] + 1, t[1], t[2] + 2}, {t[0] + 1, t[1] + 2, t[2]}, {t[0], t[1], t[2]}, {t[0], t[1] + 1, t[2] + 2}};
  this->expect_same_finite_entries(scene);
  const cv::Mat J = jacobian_classes::closed_form<TypeParam>(scene);
  for (int row = 0; row < J.rows; ++row) {
    const bool is_at_depth_zero = row / 2 == 1 || row / 2 == 2;
    for (int column = 0; column < J.cols; ++column) {
      EXPECT_EQ(std::isfinite(J.at<double>(row, column)), !is_at_depth_zero) << row << ", " << column;
    }
  }
}

}  // namespace
