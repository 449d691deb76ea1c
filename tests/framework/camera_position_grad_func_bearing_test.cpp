// SPDX-License-Identifier: BSD-3-Clause
// The Jacobians of the bearing predictions: contract, guards and values against dual numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "framework/jacobian_classes.h"
#include "support/cases.h"
#include "support/long_round.h"
#include "support/matchers.h"
#include "support/small_matrices.h"
#include "support/tolerance.h"

namespace {

using jacobian_classes::jacobian_of, jacobian_classes::Scene;
using support::Case;

constexpr std::uint64_t seed = 20240801;
constexpr double untouched = -123.25;

struct Aau_bv : jacobian_classes::Aau {
  using Class = Camera_position_grad_func_aau_bv;
};
struct Aan_bv : jacobian_classes::Aan {
  using Class = Camera_position_grad_func_aan_bv;
};
struct Qu_bv : jacobian_classes::Qu {
  using Class = Camera_position_grad_func_qu_bv;
};

struct Names {
  template <typename Model>
  static std::string GetName(int /*index*/) {
    return jacobian_classes::Names::GetName<Model>(0) + "Bv";
  }
};

/// Any intrinsics, and points all round the camera: nothing is divided, so they may lie behind it.
template <typename Model>
Scene scene_with_rotation(const std::vector<double>& rotation, support::Random& random) {
  Scene scene{rotation, support::random_intrinsics(random), {}};
  const std::vector<double> t = random.vector_in_cube(3, 2.0);
  scene.x.insert(scene.x.end(), t.begin(), t.end());
  for (int i = 0; i < 4; ++i) {
    const std::vector<double> d = support::scaled(random.direction(3), 3, random.uniform(1.0, 10.0));
    scene.points.push_back({t[0] + d[0], t[1] + d[1], t[2] + d[2]});
  }
  return scene;
}

template <typename Model>
cv::Mat bearing_jacobian(const Scene& scene) {
  const int rows = 3 * static_cast<int>(scene.points.size());
  cv::Mat J(rows, static_cast<int>(Model::n_r + 3), CV_64F, cv::Scalar(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(jacobian_of<Model>(scene)(scene.x, J, 0), rows);
  return J;
}

/// The three rows of one point from dual numbers: d([f 0 cx; 0 f cy; 0 0 1] R' (X - t)) / dx
template <typename Model>
cv::Mat dual_bearing_rows(const Scene& scene, const std::vector<double>& X) {
  constexpr std::size_t n = Model::n_r + 3;
  using Number = support::Dual<n>;
  const auto x = support::variables<n>(Model::guarded(scene.x));
  std::array<Number, Model::n_r> rotation;
  std::copy_n(x.begin(), Model::n_r, rotation.begin());
  const support::Vector3<Number> t = {x[Model::n_r], x[Model::n_r + 1], x[Model::n_r + 2]};
  const auto p = support::camera_frame_point(Model::template matrix<Number>(rotation), t, X);
  const support::Intrinsics& k = scene.intrinsics;
  const Number components[] = {k.f * p[0] + k.cx * p[2], k.f * p[1] + k.cy * p[2], p[2]};
  cv::Mat rows(3, static_cast<int>(n), CV_64F);
  for (int i = 0; i < 3; ++i) std::copy_n(components[i].derivatives.begin(), n, rows.ptr<double>(i));
  return rows;
}

cv::Mat rows_of_point(const cv::Mat& J, std::size_t i) {
  const int first = 3 * static_cast<int>(i);
  return J.rowRange(first, first + 3);
}

template <typename Model>
class CameraPositionGradFuncBearing : public testing::Test {
 protected:
  /// Within the tolerance of the largest entry of each point's block, the first columns in units of `length`.
  static void expect_agreement(const Scene& scene, std::size_t num_scaled = 0, double length = 1.0) {
    const cv::Mat J = bearing_jacobian<Model>(scene);
    for (std::size_t i = 0; i < scene.points.size(); ++i) {
      cv::Mat expected = dual_bearing_rows<Model>(scene, scene.points[i]);
      cv::Mat actual = rows_of_point(J, i).clone();
      for (int column = 0; column < static_cast<int>(num_scaled); ++column) {
        expected.col(column) *= length;
        actual.col(column) *= length;
      }
      const double unit = 1.0 / support::largest_entry(expected);
      EXPECT_TRUE(support::is_close(cv::Mat(actual * unit), cv::Mat(expected * unit), tolerance::closed_form))
          << "point " << i << " at x = " << testing::PrintToString(scene.x);
    }
  }

  static Scene scene_at(const std::vector<double>& rotation) {
    support::Random random(seed);
    return scene_with_rotation<Model>(rotation, random);
  }

  static Scene ordinary_scene() { return scene_at(Model::rotation({0.6, 0.0, 0.8, 0.7})); }
};
using All = testing::Types<Aau_bv, Aan_bv, Qu_bv>;
TYPED_TEST_SUITE(CameraPositionGradFuncBearing, All, Names);

TYPED_TEST(CameraPositionGradFuncBearing, AgreesWithDualNumbersInEveryRegimeAndAtEveryLength) {
  for (std::uint64_t number = 0; number < support::count_for_round(4000); ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const auto unit = TypeParam::rotation(support::random_angle_axis(which.regime, which.random));
    const bool is_of_ordinary_length = number / support::all_regimes.size() % 2 == 0;
    const double length = is_of_ordinary_length ? which.random.uniform(0.5, 2.0) : which.random.magnitude(-60.0, 60.0);
    const auto rotation = support::scaled(unit, TypeParam::num_free, length);
    this->expect_agreement(scene_with_rotation<TypeParam>(rotation, which.random), TypeParam::num_free, length);
    if (this->HasFailure()) break;
  }
}

TYPED_TEST(CameraPositionGradFuncBearing, AgreesWithDualNumbersAtShortVectorParts) {
  for (const double scalar : {1.0, -1.0, 0.5, 1e9}) {
    for (const auto& vector :
         {std::vector<double>{1e-60, 0, 0}, {0, -1e-60, 1e-60}, {0, 0, 1e-9}, {1e-9, 1e-9, 1e-9}}) {
      std::vector<double> rotation = vector;
      if (TypeParam::n_r == 4) rotation.push_back(scalar);
      SCOPED_TRACE(testing::PrintToString(rotation));
      this->expect_agreement(this->scene_at(rotation));
    }
  }
}

TYPED_TEST(CameraPositionGradFuncBearing, HasTheSameTranslationColumnsForEveryPoint) {
  for (std::uint64_t number = 0; number < 100; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const auto rotation = TypeParam::rotation(support::random_angle_axis(which.regime, which.random));
    const cv::Mat J = bearing_jacobian<TypeParam>(scene_with_rotation<TypeParam>(rotation, which.random));
    const cv::Mat translation = J.colRange(static_cast<int>(TypeParam::n_r), J.cols);
    for (std::size_t i = 1; i < 4; ++i) {
      EXPECT_TRUE(support::is_close(rows_of_point(translation, i), rows_of_point(translation, 0), 0.0)) << i;
    }
  }
}

TYPED_TEST(CameraPositionGradFuncBearing, IsLinearInThePoint) {
  Scene scene = this->ordinary_scene();
  const double* t = scene.x.data() + TypeParam::n_r;
  scene.points = {{t[0], t[1], t[2]}, {t[0] + 1, t[1] + 2, t[2] + 3}, {t[0] - 4, t[1] - 8, t[2] - 12}};
  const cv::Mat rotation = bearing_jacobian<TypeParam>(scene).colRange(0, static_cast<int>(TypeParam::n_r));
  EXPECT_TRUE(support::is_close(rows_of_point(rotation, 0), cv::Mat(rows_of_point(rotation, 0) * 0.0), 0.0));
  EXPECT_TRUE(support::is_close(rows_of_point(rotation, 2), cv::Mat(rows_of_point(rotation, 1) * -4.0), 1e-12));
}

TYPED_TEST(CameraPositionGradFuncBearing, ReadsOneFocalLengthAndThePrincipalPoint) {
  const Scene scene = this->ordinary_scene();
  fw::matrix<double> K = scene.K();
  K[1][1] = 7.0;
  K[0][1] = K[1][0] = K[2][0] = K[2][1] = 3.0;
  K[2][2] = 5.0;
  cv::Mat J(12, static_cast<int>(TypeParam::n_r + 3), CV_64F);
  typename TypeParam::Class(scene.points, K, nullptr)(scene.x, J, 0);
  EXPECT_TRUE(support::is_close(J, bearing_jacobian<TypeParam>(scene), 0.0));
}

TYPED_TEST(CameraPositionGradFuncBearing, StartsAtAnElementAndTouchesNothingElse) {
  Scene scene = this->ordinary_scene();
  scene.points.resize(2);
  constexpr int n_p = static_cast<int>(TypeParam::n_r + 3);
  constexpr int start = 5;
  cv::Mat J(8, n_p, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(jacobian_of<TypeParam>(scene)(scene.x, J, start), 6);

  cv::Mat expected(8, n_p, CV_64F, cv::Scalar(untouched));
  const cv::Mat rows = bearing_jacobian<TypeParam>(scene);
  std::copy_n(rows.ptr<double>(), rows.total(), expected.ptr<double>() + start);
  EXPECT_TRUE(support::is_close(J, expected, 0.0));
}

TYPED_TEST(CameraPositionGradFuncBearing, TouchesNothingWithoutPoints) {
  Scene scene = this->ordinary_scene();
  scene.points.clear();
  cv::Mat J(2, 7, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(jacobian_of<TypeParam>(scene)(scene.x, J, 0), 0);
  EXPECT_TRUE(support::is_close(J, cv::Mat(2, 7, CV_64F, cv::Scalar(untouched)), 0.0));
}

template <typename Model>
void expect_same_rows(const std::vector<double>& rotation, const std::vector<double>& replaced) {
  support::Random random(seed);
  Scene scene = scene_with_rotation<Model>(rotation, random);
  const cv::Mat J = bearing_jacobian<Model>(scene);
  std::copy(replaced.begin(), replaced.end(), scene.x.begin());
  EXPECT_TRUE(support::is_close(J, bearing_jacobian<Model>(scene), 0.0)) << testing::PrintToString(rotation);
}

TEST(BearingGuard, ReplacesAZeroRotationVector) {
  expect_same_rows<Aau_bv>({0, 0, 0}, {1e-9, 1e-9, 1e-9});
  expect_same_rows<Aau_bv>({0, -0.0, 0}, {1e-9, 1e-9, 1e-9});
}

TEST(BearingGuard, ReplacesTheVectorPartOfAQuaternionWhateverItsScalar) {
  for (const double scalar : {1.0, -1.0, 0.0, 2.0}) {
    expect_same_rows<Qu_bv>({0, 0, 0, scalar}, {1e-9, 1e-9, 1e-9, scalar});
  }
}

TEST(BearingGuard, DoesNotCoverAZeroAxis) {
  support::Random random(seed);
  const cv::Mat J = bearing_jacobian<Aan_bv>(scene_with_rotation<Aan_bv>({0, 0, 0, 0.5}, random));
  for (int row = 0; row < J.rows; ++row) {
    for (int column = 0; column < J.cols; ++column) {
      EXPECT_FALSE(std::isfinite(J.at<double>(row, column))) << row << ", " << column;
    }
  }
}

}  // namespace
