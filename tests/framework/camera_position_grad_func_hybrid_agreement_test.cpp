// SPDX-License-Identifier: BSD-3-Clause
// Where the three blocks of a hybrid Jacobian agree with each other, and by how much they differ where they do not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "framework/hybrid_classes.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/small_matrices.h"

namespace {

using hybrid_classes::Aan, hybrid_classes::Aau_qu_aan, hybrid_classes::block, hybrid_classes::Scene;
using support::is_close, support::largest_entry, support::product_of, support::Random;
using Vector = std::vector<double>;

constexpr std::uint64_t seed = 20240902;
constexpr double agreement = 1e-9;  // of the block's largest entry: a conversion at 0.1 rad has lost up to three digits

/// A scene at a unit axis and an angle between the limits.
template <typename Hybrid>
struct Rotated_scene {
  Vector unit_angle_axis;
  Scene scene;
  cv::Mat J;

  Rotated_scene(Random& random, double smallest_angle, double largest_angle)
      : unit_angle_axis(random.direction(3)), scene{{}, {0, 0, 0}, {}} {
    unit_angle_axis.push_back(random.uniform(smallest_angle, largest_angle));
    scene = hybrid_classes::scene_with_rotation<Hybrid>(Hybrid::Primary::rotation(unit_angle_axis), random);
    J = hybrid_classes::jacobian<Hybrid>(scene);
  }
  cv::Mat rotation_columns(int number) const {
    return block(J, number).colRange(0, hybrid_classes::num_rotation<Hybrid>);
  }
  cv::Mat translation_columns(int number) const { return block(J, number).colRange(J.cols - 3, J.cols); }
  /// The derivative of the pixels by the angle.
  cv::Mat by_angle() const { return hybrid_classes::single_jacobian<Aan>(scene, unit_angle_axis).col(3); }
  /// The direction in which the entries change without changing the rotation; none for a rotation vector.
  Vector redundant_direction() const {
    const Vector rotation = hybrid_classes::rotation_of(scene);
    if (Hybrid::type == -1) return rotation;
    return {rotation[0], rotation[1], rotation[2], 0.0};
  }
};

void expect_close_to_block_1(const cv::Mat& actual, const cv::Mat& expected) {
  const double unit = 1.0 / largest_entry(expected);
  EXPECT_TRUE(is_close(cv::Mat(actual * unit), cv::Mat(expected * unit), agreement));
}

template <typename Hybrid>
class RedundantHybridAgreement : public testing::Test {};
using Redundant = testing::Types<hybrid_classes::Qu_aau_aan, hybrid_classes::Aan_qu_aau>;
TYPED_TEST_SUITE(RedundantHybridAgreement, Redundant, hybrid_classes::Names);

// Up to 120 degrees every conversion by way of the rotation matrix gives the quaternion with a positive scalar part.
TEST(HybridAgreement, OfRotationVectorBlocksIsEntryForEntry) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Rotated_scene<Aau_qu_aan> at(random, 0.1, 2.0);
    expect_close_to_block_1(block(at.J, 2), block(at.J, 1));
    expect_close_to_block_1(block(at.J, 3), block(at.J, 1));
    if (testing::Test::HasFailure()) break;
  }
}

TYPED_TEST(RedundantHybridAgreement, CoversWhatChangesTheRotation) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Rotated_scene<TypeParam> at(random, 0.1, 2.0);
    const cv::Mat basis = support::orthogonal_directions(at.redundant_direction());
    for (const int k : {2, 3}) {
      SCOPED_TRACE(k);
      expect_close_to_block_1(product_of(at.rotation_columns(k), basis), product_of(at.rotation_columns(1), basis));
      expect_close_to_block_1(at.translation_columns(k), at.translation_columns(1));
    }
    if (this->HasFailure()) break;
  }
}

/// J d = factor du/dangle, where d does not change the rotation: block 1 knows that and gives zero. The other two take
/// a longer quaternion for one with another scalar part, a longer axis for a larger angle.
double factor_of_angle(int type, int block_number, double angle) {
  if (type == -1) return -2.0 / std::tan(0.5 * angle);
  return block_number == 2 ? std::sin(angle) : angle;
}

TYPED_TEST(RedundantHybridAgreement, EndsAlongTheRedundantDirection) {
  std::vector<double> differences;
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Rotated_scene<TypeParam> at(random, 0.5, 2.0);
    const cv::Mat direction = support::column_of(at.redundant_direction());
    const double unit = 1.0 / largest_entry(at.rotation_columns(1));
    EXPECT_LT(largest_entry(product_of(at.rotation_columns(1), direction)) * unit, 1e-12);
    for (const int k : {2, 3}) {
      SCOPED_TRACE(k);
      const double factor = factor_of_angle(TypeParam::type, k, at.unit_angle_axis[3]);
      EXPECT_TRUE(is_close(cv::Mat(product_of(at.rotation_columns(k), direction) * unit),
                           cv::Mat(at.by_angle() * (factor * unit)), agreement));
      differences.push_back(largest_entry(at.rotation_columns(k) - at.rotation_columns(1)) * unit);
    }
    if (this->HasFailure()) break;
  }
  ASSERT_EQ(differences.size(), 2000U);
  std::sort(differences.begin(), differences.end());
  const std::size_t quarter = differences.size() / 4;
  EXPECT_GT(differences.front(), 0.01);  // far beyond rounding in every scene
  EXPECT_GT(differences[quarter], 0.3);
  EXPECT_LT(differences[3 * quarter], 3.0);
}

template <typename Hybrid>
class QuaternionBlock : public testing::Test {};
using With_quaternion_block = testing::Types<Aau_qu_aan, hybrid_classes::Aan_qu_aau>;
TYPED_TEST_SUITE(QuaternionBlock, With_quaternion_block, hybrid_classes::Names);

// Beyond 120 degrees the conversion makes the largest entry of the vector part positive, while the representation
// Jacobian belongs to the quaternion with a positive scalar part: where these are opposite, so are the derivatives.
TYPED_TEST(QuaternionBlock, IsOfTheOppositeSignBeyond120DegreesAboutANegativeAxis) {
  int num_opposite = 0;
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Rotated_scene<TypeParam> at(random, 2.2, 3.0);
    const auto larger = [](double a, double b) { return std::abs(a) < std::abs(b); };
    const double sign =
        *std::max_element(at.unit_angle_axis.begin(), at.unit_angle_axis.begin() + 3, larger) < 0 ? -1 : 1;
    const cv::Mat basis = TypeParam::type == -2 ? cv::Mat(cv::Mat::eye(3, 3, CV_64F))
                                                : support::orthogonal_directions(at.redundant_direction());
    expect_close_to_block_1(product_of(at.rotation_columns(2), basis),
                            product_of(at.rotation_columns(1), basis) * sign);
    expect_close_to_block_1(product_of(at.rotation_columns(3), basis), product_of(at.rotation_columns(1), basis));
    expect_close_to_block_1(at.translation_columns(2), at.translation_columns(1));
    if (this->HasFailure()) break;
    if (sign < 0) ++num_opposite;
  }
  EXPECT_GT(num_opposite, 300);
  EXPECT_LT(num_opposite, 700);
}

// With a negative scalar part the representation Jacobians speak of the turn by 2 pi - angle about the opposite axis,
// the conversions of the turn by the angle itself. Of the two axis-angle forms both entries are opposite; of the two
// rotation vectors the lengths are 2 pi apart.
TEST(QuaternionWithNegativeScalarPart, MakesTheOtherBlocksDiffer) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    Vector a = random.direction(3);
    a.push_back(random.uniform(0.3, 2.8));
    const Vector q = support::scaled(support::quaternion_from(a), 4, -1.0);
    const Scene scene = hybrid_classes::scene_with_rotation<hybrid_classes::Qu_aau_aan>(q, random);
    const cv::Mat J = hybrid_classes::jacobian<hybrid_classes::Qu_aau_aan>(scene);

    const Vector axis(a.begin(), a.begin() + 3);
    const cv::Mat across = support::orthogonal_directions(axis);  // changes the axis
    const Vector along{a[0] * q[3], a[1] * q[3], a[2] * q[3], -(a[0] * q[0] + a[1] * q[1] + a[2] * q[2])};  // the angle
    const auto turning_axis = [&](int k) { return product_of(block(J, k).colRange(0, 3), across); };
    const auto turning_angle = [&](int k) { return product_of(block(J, k).colRange(0, 4), support::column_of(along)); };
    const double ratio = (2.0 * support::pi - a[3]) / a[3];
    expect_close_to_block_1(turning_axis(2), turning_axis(1) * -ratio);
    expect_close_to_block_1(turning_axis(3), -turning_axis(1));
    expect_close_to_block_1(turning_angle(2), turning_angle(1));
    expect_close_to_block_1(turning_angle(3), -turning_angle(1));
    expect_close_to_block_1(block(J, 2).colRange(4, 7), block(J, 1).colRange(4, 7));
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
