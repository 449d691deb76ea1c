// SPDX-License-Identifier: BSD-3-Clause
// Derivatives of one rotation representation by another: fixed points and shapes.
#include "fw_tools/rotation_jacobians.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/matchers.h"

namespace {

using support::is_close;
using Vector = std::vector<double>;

cv::Mat table(int rows, int columns, const Vector& values) {
  return cv::Mat(values).reshape(1, rows).clone().colRange(0, columns);
}

TEST(AngleAxisToRotationVectorJacobian, IsTheAngleAndTheAxis) {
  EXPECT_TRUE(is_close(fw::angle_axis_to_rot_vec_jacobian(Vector{0, 0, 1, 0.5}),
                       table(3, 4, {0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 1}), 0.0));
}

TEST(AngleAxisToQuaternionJacobian, AtNoAngleIsHalfTheAxis) {
  const cv::Mat_<double> J = fw::angle_axis_to_quaternion_jacobian(Vector{0, 0, 1, 0});
  EXPECT_TRUE(is_close(J, table(4, 4, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0.5, 0, 0, 0, 0}), 0.0));
  EXPECT_TRUE(std::signbit(J(3, 3)));
}

TEST(RotationVectorToAngleAxisJacobian, AlongZ) {
  EXPECT_TRUE(is_close(fw::rot_vec_to_angle_axis_jacobian(Vector{0, 0, 2}),
                       table(4, 3, {0.5, 0, 0, 0, 0.5, 0, 0, 0, 0, 0, 0, 1}), 0.0));
}

/// A 1 for every entry that is finite, a 0 for every other.
cv::Mat finite_entries(const cv::Mat& m) {
  cv::Mat result(m.size(), CV_64F);
  for (int i = 0; i < m.rows; ++i) {
    for (int j = 0; j < m.cols; ++j) result.at<double>(i, j) = std::isfinite(m.at<double>(i, j)) ? 1.0 : 0.0;
  }
  return result;
}

cv::Mat all_of(int rows, int columns, double value) { return {rows, columns, CV_64F, cv::Scalar(value)}; }

TEST(RepresentationJacobians, OfARotationVectorAreNowhereFiniteWithoutARotation) {
  for (const Vector& r : {Vector{0, 0, 0}, Vector{0, -0.0, 0}, Vector{0, 1e-170, 0}}) {
    EXPECT_TRUE(is_close(finite_entries(fw::rot_vec_to_quaternion_jacobian(r)), all_of(4, 3, 0), 0.0));
    EXPECT_TRUE(is_close(finite_entries(fw::rot_vec_to_angle_axis_jacobian(r)), all_of(4, 3, 0), 0.0));
  }
}

TEST(RepresentationJacobians, OfAQuaternionAreNotFiniteWithoutARotation) {
  for (const double w : {1.0, -1.0}) {
    SCOPED_TRACE(w);
    const Vector q{0, 0, 0, w};
    // What belongs to the scalar column of the axis and to the vector columns of the angle is zero throughout.
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_angle_axis_jacobian(q)),
                         table(4, 4, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1, 0}), 0.0));
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_rot_vec_jacobian(q)), all_of(3, 4, 0), 0.0));
  }
}

TEST(RepresentationJacobians, OfAQuaternionWithoutVectorPartLackTheAxisOnly) {
  const cv::Mat_<double> J = fw::quaternion_to_angle_axis_jacobian(Vector{0, 0, 0, 0.6});
  EXPECT_TRUE(is_close(finite_entries(J), table(4, 4, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1, 1}), 0.0));
  EXPECT_DOUBLE_EQ(J(3, 3), -2.5);
}

TEST(RepresentationJacobians, OfAQuaternionLackTheScalarColumnAtAUnitScalarPart) {
  for (const double w : {1.0, -1.0}) {
    SCOPED_TRACE(w);
    const Vector q{0.1, 0.2, 0.2, w};
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_rot_vec_jacobian(q)),
                         table(3, 4, {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0}), 0.0));
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_angle_axis_jacobian(q)),
                         table(4, 4, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0}), 0.0));
  }
}

TEST(RepresentationJacobians, OfAQuaternionHaveNoAngleBeyondAUnitScalarPart) {
  for (const double w : {1.0 + 0x1p-52, 2.0, -1.5}) {
    SCOPED_TRACE(w);
    const Vector q{0.1, 0.2, 0.2, w};
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_rot_vec_jacobian(q)), all_of(3, 4, 0), 0.0));
    EXPECT_TRUE(is_close(finite_entries(fw::quaternion_to_angle_axis_jacobian(q)),
                         table(4, 4, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0}), 0.0));
  }
}

TEST(RepresentationJacobians, OfAnAngleAxisAreFiniteWithoutAxisOrAngle) {
  const Vector nothing{0, 0, 0, 0};
  EXPECT_TRUE(is_close(fw::angle_axis_to_quaternion_jacobian(nothing), all_of(4, 4, 0), 0.0));
  EXPECT_TRUE(is_close(fw::angle_axis_to_rot_vec_jacobian(nothing), all_of(3, 4, 0), 0.0));
}

TEST(RepresentationJacobians, HaveARowForEachOutputAndAColumnForEachInput) {
  const Vector q{0.1, 0.2, 0.3, 0.9};
  const Vector r{0.1, 0.2, 0.3};
  EXPECT_EQ(fw::quaternion_to_rot_vec_jacobian(q).size(), cv::Size(4, 3));
  EXPECT_EQ(fw::quaternion_to_angle_axis_jacobian(q).size(), cv::Size(4, 4));
  EXPECT_EQ(fw::rot_vec_to_quaternion_jacobian(r).size(), cv::Size(3, 4));
  EXPECT_EQ(fw::rot_vec_to_angle_axis_jacobian(r).size(), cv::Size(3, 4));
  EXPECT_EQ(fw::angle_axis_to_quaternion_jacobian(q).size(), cv::Size(4, 4));
  EXPECT_EQ(fw::angle_axis_to_rot_vec_jacobian(q).size(), cv::Size(4, 3));
}

TEST(FullJacobian, HasTheIdentityForTheTranslation) {
  cv::Mat_<double> J(4, 3);
  for (int i = 0; i < 12; ++i) J(i / 3, i % 3) = i + 1;
  const cv::Mat_<double> full = fw::convert_rot_jac_to_full_jac(J);
  // Laid out as the matrix that it is.
  // clang-format off
  EXPECT_TRUE(is_close(full, table(7, 6, { 1,  2,  3, 0, 0, 0,
                                           4,  5,  6, 0, 0, 0,
                                           7,  8,  9, 0, 0, 0,
                                          10, 11, 12, 0, 0, 0,
                                           0,  0,  0, 1, 0, 0,
                                           0,  0,  0, 0, 1, 0,
                                           0,  0,  0, 0, 0, 1}), 0.0));
  // clang-format on
}

TEST(FullJacobian, CopiesNonFiniteEntriesAsTheyAre) {
  const cv::Mat_<double> full = fw::convert_rot_jac_to_full_jac(fw::rot_vec_to_quaternion_jacobian(Vector{0, 0, 0}));
  cv::Mat expected = all_of(7, 6, 1);
  expected(cv::Range(0, 4), cv::Range(0, 3)) = cv::Scalar(0);
  EXPECT_TRUE(is_close(finite_entries(full), expected, 0.0));
}

TEST(FullJacobian, OfNothingIsTheIdentity) {
  EXPECT_TRUE(is_close(fw::convert_rot_jac_to_full_jac(cv::Mat_<double>()), cv::Mat(cv::Mat::eye(3, 3, CV_64F)), 0.0));
}

}  // namespace
