// SPDX-License-Identifier: BSD-3-Clause
// The blocks of the hybrid Jacobians: where they are written, and the chain rule behind them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "framework/hybrid_classes.h"
#include "support/cases.h"
#include "support/long_round.h"
#include "support/matchers.h"
#include "support/small_matrices.h"
#include "support/tolerance.h"

namespace {

using hybrid_classes::block, hybrid_classes::num_columns, hybrid_classes::rotation_of, hybrid_classes::Scene;
using support::Case, support::is_close;
using Vector = std::vector<double>;

constexpr std::uint64_t seed = 20240815;
constexpr double untouched = -123.25;

/// The Jacobian of a pose from that of its rotation: [J 0; 0 I].
cv::Mat pose_jacobian(const cv::Mat& rotation_jacobian) {
  cv::Mat J = cv::Mat::zeros(rotation_jacobian.rows + 3, rotation_jacobian.cols + 3, CV_64F);
  rotation_jacobian.copyTo(J(cv::Range(0, rotation_jacobian.rows), cv::Range(0, rotation_jacobian.cols)));
  for (int i = 1; i <= 3; ++i) J.at<double>(J.rows - i, J.cols - i) = 1.0;
  return J;
}

/// Each row of a product to the tolerance of the largest sum of |terms| in that row: what roundings can reach.
void expect_product(const cv::Mat& actual, const cv::Mat& outer, const cv::Mat& inner) {
  const cv::Mat expected = support::product_of(outer, inner);
  const cv::Mat terms = support::product_of(cv::abs(outer), cv::abs(inner));
  for (int row = 0; row < expected.rows; ++row) {
    const double unit = 1.0 / support::largest_entry(terms.row(row));
    EXPECT_TRUE(is_close(cv::Mat(actual.row(row) * unit), cv::Mat(expected.row(row) * unit), tolerance::identity))
        << "row " << row;
  }
}

template <typename Hybrid>
class CameraPositionGradFuncHybrid : public testing::Test {
 protected:
  static constexpr int n_r = hybrid_classes::num_rotation<Hybrid>;

  /// Unit entries; those of a quaternion or an axis between half and twice that when asked for.
  static Scene random_scene(Case& which, bool is_unit = true) {
    const Vector unit = Hybrid::Primary::rotation(support::random_angle_axis(which.regime, which.random));
    const double length = is_unit ? 1.0 : which.random.uniform(0.5, 2.0);
    return hybrid_classes::scene_with_rotation<Hybrid>(support::scaled(unit, Hybrid::Primary::num_free, length),
                                                       which.random);
  }
  static Scene ordinary_scene() {
    support::Random random(seed);
    return hybrid_classes::scene_with_rotation<Hybrid>(Hybrid::Primary::rotation({0.6, 0.0, 0.8, 0.7}), random);
  }
};
TYPED_TEST_SUITE(CameraPositionGradFuncHybrid, hybrid_classes::All, hybrid_classes::Names);

TYPED_TEST(CameraPositionGradFuncHybrid, WritesSixRowsForEachPointAndNoOther) {
  const Scene scene = this->ordinary_scene();
  cv::Mat J(20, num_columns<TypeParam>, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(typename TypeParam::Class(scene.points, scene.K(), nullptr)(scene.x, J, 0), 18);
  EXPECT_TRUE(is_close(J.rowRange(0, 18), hybrid_classes::jacobian<TypeParam>(scene), 0.0));
  EXPECT_TRUE(is_close(J.rowRange(18, 20), cv::Mat(2, J.cols, CV_64F, cv::Scalar(untouched)), 0.0));
}

TYPED_TEST(CameraPositionGradFuncHybrid, WritesNothingWithoutPoints) {
  const Scene scene = this->ordinary_scene();
  const typename TypeParam::Class hybrid({}, scene.K(), nullptr);
  cv::Mat J(2, num_columns<TypeParam>, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(hybrid(scene.x, J, 0), 0);
  EXPECT_TRUE(is_close(J, cv::Mat(2, J.cols, CV_64F, cv::Scalar(untouched)), 0.0));
  cv::Mat nothing;
  EXPECT_EQ(hybrid(scene.x, nothing, 0), 0);
  EXPECT_TRUE(nothing.empty());
}

TYPED_TEST(CameraPositionGradFuncHybrid, HasTheBitsOfTheFirstClassInBlock1) {
  for (std::uint64_t number = 0; number < support::count_for_round(1000); ++number) {
    Case which(seed, number);
    const Scene scene = this->random_scene(which, false);
    const cv::Mat J = block(hybrid_classes::jacobian<TypeParam>(scene), 1);
    const cv::Mat expected =
        hybrid_classes::single_jacobian<typename TypeParam::Primary>(scene, hybrid_classes::rotation_of(scene));
    ASSERT_EQ(J.size(), expected.size());
    ASSERT_EQ(std::memcmp(J.data, expected.data, J.total() * sizeof(double)), 0) << which;
  }
}

TYPED_TEST(CameraPositionGradFuncHybrid, FollowsTheChainRuleInBlocks2And3) {
  std::uint64_t num_compared = 0;
  for (std::uint64_t number = 0; number < support::count_for_round(4000); ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    const bool is_unit = number / support::all_regimes.size() % 2 == 0;
    const Scene scene = this->random_scene(which, is_unit);
    const Vector rotation = rotation_of(scene);
    const cv::Mat second = TypeParam::second_by_primary(rotation);
    const cv::Mat third = TypeParam::third_by_primary(rotation);
    if (!hybrid_classes::is_finite(second) || !hybrid_classes::is_finite(third)) continue;

    const cv::Mat J = hybrid_classes::jacobian<TypeParam>(scene);
    using hybrid_classes::single_jacobian;
    expect_product(block(J, 2), single_jacobian<typename TypeParam::Second>(scene, TypeParam::second(rotation)),
                   pose_jacobian(second));
    expect_product(block(J, 3), single_jacobian<typename TypeParam::Third>(scene, TypeParam::third(rotation)),
                   pose_jacobian(third));
    if (this->HasFailure()) break;
    ++num_compared;
  }
  EXPECT_GE(num_compared, support::count_for_round(1000));  // the others are tested as degenerate rotations
}

TYPED_TEST(CameraPositionGradFuncHybrid, HasTheTranslationColumnsOfTheOtherClassesToTheLastBit) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed + 1, number);
    which.regime = support::Regime::ordinary;
    SCOPED_TRACE(which);
    const Scene scene = this->random_scene(which);
    const cv::Mat J = hybrid_classes::jacobian<TypeParam>(scene);
    const Vector rotation = rotation_of(scene);
    const cv::Mat second =
        hybrid_classes::single_jacobian<typename TypeParam::Second>(scene, TypeParam::second(rotation));
    const cv::Mat third = hybrid_classes::single_jacobian<typename TypeParam::Third>(scene, TypeParam::third(rotation));
    const int n = J.cols;
    EXPECT_TRUE(is_close(block(J, 2).colRange(n - 3, n), second.colRange(second.cols - 3, second.cols), 0.0));
    EXPECT_TRUE(is_close(block(J, 3).colRange(n - 3, n), third.colRange(third.cols - 3, third.cols), 0.0));
  }
}

TYPED_TEST(CameraPositionGradFuncHybrid, ReadsOneFocalLengthAndThePrincipalPoint) {
  const Scene scene = this->ordinary_scene();
  fw::matrix<double> K = scene.K();
  K[1][1] = 7.0;
  K[0][1] = K[1][0] = K[2][0] = K[2][1] = 3.0;
  K[2][2] = 5.0;
  cv::Mat J(18, num_columns<TypeParam>, CV_64F);
  typename TypeParam::Class(scene.points, K, nullptr)(scene.x, J, 0);
  EXPECT_TRUE(is_close(J, hybrid_classes::jacobian<TypeParam>(scene), 0.0));
}

}  // namespace
