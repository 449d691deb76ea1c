// SPDX-License-Identifier: BSD-3-Clause
// The representation Jacobians against dual numbers of the formulas they differentiate, and chained with each other.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "fw_tools/rotation_jacobians.h"
#include "support/cases.h"
#include "support/dual_functions.h"
#include "support/matchers.h"
#include "support/small_matrices.h"
#include "support/tolerance.h"

namespace {

using support::Case, support::Random, support::Regime;
using Vector = std::vector<double>;

constexpr std::uint64_t seed = 20240719;

template <typename T>
T length_of(const T& x, const T& y, const T& z) {
  using std::sqrt;
  return sqrt(x * x + y * y + z * z);
}

/// A vector part of any length and a scalar part between -1 and 1. The scalar has 26 binary digits, so its square is
/// exact and 1 - w^2 loses nothing, however near w is to 1.
Vector random_quaternion(Case& which) {
  Vector a = support::random_angle_axis(which.regime, which.random);
  constexpr double unit = 0x1p-26;
  a[3] = std::clamp(std::round(std::cos(0.5 * a[3]) / unit) * unit, unit - 1.0, 1.0 - unit);
  return support::scaled(a, 3, which.random.magnitude(-60.0, 60.0));
}

Vector random_rotation_vector(Case& which) {
  const Regime regime = which.regime == Regime::identity ? Regime::tiny : which.regime;
  return support::rotation_vector_from(support::random_angle_axis(regime, which.random));
}

Vector random_angle_axis(Case& which) {
  return support::scaled(support::random_angle_axis(which.regime, which.random), 3,
                         which.random.magnitude(-60.0, 60.0));
}

struct QuaternionToRotationVector {
  static constexpr const char* name = "QuaternionToRotationVector";
  static constexpr std::size_t num_inputs = 4;
  static Vector random_input(Case& which) { return random_quaternion(which); }
  static cv::Mat closed_form(const Vector& q) { return fw::quaternion_to_rot_vec_jacobian(q); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 4>& q) {
    const T factor = T(2.0) * acos(q[3]) / length_of(q[0], q[1], q[2]);
    return {factor * q[0], factor * q[1], factor * q[2]};
  }
};

struct QuaternionToAngleAxis {
  static constexpr const char* name = "QuaternionToAngleAxis";
  static constexpr std::size_t num_inputs = 4;
  static Vector random_input(Case& which) { return random_quaternion(which); }
  static cv::Mat closed_form(const Vector& q) { return fw::quaternion_to_angle_axis_jacobian(q); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 4>& q) {
    const T length = length_of(q[0], q[1], q[2]);
    return {q[0] / length, q[1] / length, q[2] / length, T(2.0) * acos(q[3])};
  }
};

struct RotationVectorToQuaternion {
  static constexpr const char* name = "RotationVectorToQuaternion";
  static constexpr std::size_t num_inputs = 3;
  static Vector random_input(Case& which) { return random_rotation_vector(which); }
  static cv::Mat closed_form(const Vector& v) { return fw::rot_vec_to_quaternion_jacobian(v); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 3>& v) {
    const T angle = length_of(v[0], v[1], v[2]);
    const T half_sine = sin(angle * 0.5);
    return {v[0] / angle * half_sine, v[1] / angle * half_sine, v[2] / angle * half_sine, cos(angle * 0.5)};
  }
};

struct RotationVectorToAngleAxis {
  static constexpr const char* name = "RotationVectorToAngleAxis";
  static constexpr std::size_t num_inputs = 3;
  static Vector random_input(Case& which) { return random_rotation_vector(which); }
  static cv::Mat closed_form(const Vector& v) { return fw::rot_vec_to_angle_axis_jacobian(v); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 3>& v) {
    const T angle = length_of(v[0], v[1], v[2]);
    return {v[0] / angle, v[1] / angle, v[2] / angle, angle};
  }
};

struct AngleAxisToQuaternion {
  static constexpr const char* name = "AngleAxisToQuaternion";
  static constexpr std::size_t num_inputs = 4;
  static Vector random_input(Case& which) { return random_angle_axis(which); }
  static cv::Mat closed_form(const Vector& a) { return fw::angle_axis_to_quaternion_jacobian(a); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 4>& a) {
    const T half_sine = sin(a[3] * 0.5);
    return {a[0] * half_sine, a[1] * half_sine, a[2] * half_sine, cos(a[3] * 0.5)};
  }
};

struct AngleAxisToRotationVector {
  static constexpr const char* name = "AngleAxisToRotationVector";
  static constexpr std::size_t num_inputs = 4;
  static Vector random_input(Case& which) { return random_angle_axis(which); }
  static cv::Mat closed_form(const Vector& a) { return fw::angle_axis_to_rot_vec_jacobian(a); }
  template <typename T>
  static std::vector<T> formula(const std::array<T, 4>& a) {
    return {a[0] * a[3], a[1] * a[3], a[2] * a[3]};
  }
};

/// Element (i, j) = d(output i) / d(input j), from dual numbers.
template <typename Conversion>
cv::Mat dual_jacobian(const Vector& input) {
  constexpr std::size_t n = Conversion::num_inputs;
  const auto outputs = Conversion::template formula<support::Dual<n>>(support::variables<n>(input));
  cv::Mat J(static_cast<int>(outputs.size()), static_cast<int>(n), CV_64F);
  for (int i = 0; i < J.rows; ++i) {
    std::copy_n(outputs[static_cast<std::size_t>(i)].derivatives.begin(), n, J.ptr<double>(i));
  }
  return J;
}

/// Vector and scalar parts of inputs and outputs have sizes of their own, so each combination is held to the tolerance
/// of its own largest entry; where that is zero, so must the other be.
void expect_agreement_part_by_part(const cv::Mat& actual, const cv::Mat& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (const cv::Range& rows : {cv::Range(0, 3), cv::Range(3, expected.rows)}) {
    for (const cv::Range& columns : {cv::Range(0, 3), cv::Range(3, expected.cols)}) {
      if (rows.empty() || columns.empty()) continue;
      const double largest = support::largest_entry(expected(rows, columns));
      const double unit = largest == 0.0 ? 1.0 : 1.0 / largest;
      EXPECT_TRUE(support::is_close(cv::Mat(actual(rows, columns) * unit), cv::Mat(expected(rows, columns) * unit),
                                    largest == 0.0 ? 0.0 : tolerance::closed_form))
          << "rows from " << rows.start << ", columns from " << columns.start;
    }
  }
}

template <typename Conversion>
class RepresentationJacobian : public testing::Test {};

using All = testing::Types<QuaternionToRotationVector, QuaternionToAngleAxis, RotationVectorToQuaternion,
                           RotationVectorToAngleAxis, AngleAxisToQuaternion, AngleAxisToRotationVector>;
struct Names {
  template <typename Conversion>
  static std::string GetName(int /*index*/) {
    return Conversion::name;
  }
};
TYPED_TEST_SUITE(RepresentationJacobian, All, Names);

TYPED_TEST(RepresentationJacobian, AgreesWithDualNumbersInEveryRegime) {
  for (std::uint64_t number = 0; number < 4000; ++number) {
    Case which(seed, number);
    const Vector input = TypeParam::random_input(which);
    SCOPED_TRACE(which);
    SCOPED_TRACE(testing::PrintToString(input));
    expect_agreement_part_by_part(TypeParam::closed_form(input), dual_jacobian<TypeParam>(input));
    if (this->HasFailure()) break;
  }
}

/// A unit axis and an angle between 0.1 and 3, where all conversions are one to one, in the three representations.
struct Rotation {
  Vector a, r, q;

  explicit Rotation(Random& random) : a(random.direction(3)) {
    a.push_back(random.uniform(0.1, 3.0));
    r = support::rotation_vector_from(a);
    q = support::quaternion_from(a);
  }
  /// What a Jacobian there and back leaves of (axis, angle): the axis loses its length, I - n n'; the angle gains
  /// what a longer axis added to it on the way.
  cv::Mat without_axis_length(const Vector& added_to_angle) const {
    cv::Mat J = cv::Mat::eye(4, 4, CV_64F);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        J.at<double>(i, j) -= a[static_cast<std::size_t>(i)] * a[static_cast<std::size_t>(j)];
      }
      J.at<double>(3, i) = added_to_angle[static_cast<std::size_t>(i)];
    }
    return J;
  }
};

void expect_product(const cv::Mat& outer, const cv::Mat& inner, const cv::Mat& expected) {
  EXPECT_TRUE(support::is_close(support::product_of(outer, inner), expected, tolerance::identity));
}

TEST(RepresentationJacobians, ThereAndBackAreTheIdentityOfWhatIsFree) {
  const cv::Mat identity = cv::Mat::eye(3, 3, CV_64F);
  for (std::uint64_t number = 0; number < 1000; ++number) {
    SCOPED_TRACE(testing::Message() << "case " << number << " of seed " << seed);
    Random random(seed + number);
    const Rotation at(random);
    expect_product(fw::quaternion_to_rot_vec_jacobian(at.q), fw::rot_vec_to_quaternion_jacobian(at.r), identity);
    expect_product(fw::angle_axis_to_rot_vec_jacobian(at.a), fw::rot_vec_to_angle_axis_jacobian(at.r), identity);
    expect_product(fw::rot_vec_to_angle_axis_jacobian(at.r), fw::angle_axis_to_rot_vec_jacobian(at.a),
                   at.without_axis_length(at.r));  // the length of the product of axis and angle
    expect_product(fw::quaternion_to_angle_axis_jacobian(at.q), fw::angle_axis_to_quaternion_jacobian(at.a),
                   at.without_axis_length({0, 0, 0}));  // the scalar part knows the angle alone
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace
