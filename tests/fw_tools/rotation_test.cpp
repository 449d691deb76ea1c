// SPDX-License-Identifier: BSD-3-Clause
// The rotation conversions at chosen points: exact values, guards, layouts.
#include "fw_tools/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/cases.h"
#include "support/matchers.h"
#include "support/matrix_of.h"
#include "support/tolerance.h"

namespace {

using Matrix = fw::matrix<double>;
using Vector = std::vector<double>;
using support::is_close;
using support::matrix_of;
using support::pi;

const Matrix identity = matrix_of({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});

TEST(MatrixToAngleAxis, GivesNoRotationTheAxisY) {
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(identity), (Vector{0, 1, 0, 0}));
  EXPECT_EQ(fw::rot_mat_to_rot_vec_rad(identity), (Vector{0, 0, 0}));
}

TEST(MatrixToAngleAxis, TakesATraceWithin1e12Of3AsNoRotation) {
  const auto with_trace_lowered = [](double by) { return matrix_of({{1, -1e-6, 0}, {1e-6, 1 - by, 0}, {0, 0, 1}}); };
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(with_trace_lowered(0.9e-12)), (Vector{0, 1, 0, 0}));
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(with_trace_lowered(-0.9e-12)), (Vector{0, 1, 0, 0}));
  const Vector a = fw::rot_mat_to_ang_axis_rad(with_trace_lowered(1.1e-12));
  EXPECT_EQ((Vector{a[0], a[1]}), (Vector{0, 0}));
  EXPECT_GT(a[2], 0.5);
  EXPECT_GT(a[3], 1e-7);
}

TEST(MatrixToAngleAxis, DividesByTwiceTheSineWithoutRenormalising) {
  // Trace 1, so the angle is pi / 2 and the divisor 2.
  const Vector a = fw::rot_mat_to_ang_axis_rad(matrix_of({{1, 2, 30}, {7, 1, 50}, {11, 150, -1}}));
  EXPECT_TRUE(is_close(a, Vector{50.0, 9.5, 2.5, pi / 2}, tolerance::identity));
}

TEST(RotationVectorToAngleAxis, GivesAZeroVectorZeros) {
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{0, 0, 0}), (Vector{0, 0, 0, 0}));
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{}), (Vector{0}));
}

TEST(RotationVectorToAngleAxis, AppendsTheLengthOfVectorsOfAnySize) {
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{-2}), (Vector{-1, 2}));
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{3, -4}), (Vector{3.0 / 5, -4.0 / 5, 5}));
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{0, 0, 0, -0.5, 0}), (Vector{0, 0, 0, -1, 0, 0.5}));
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{0, 0, 1e-150}), (Vector{0, 0, 1, 1e-150}));
}

TEST(RotationVectorToAngleAxis, TakesALengthThatUnderflowsForZero) {
  EXPECT_EQ(fw::rot_vec_to_ang_axis(Vector{0, 0, 1e-170}), (Vector{0, 0, 0, 0}));
}

Vector enforced(Vector a) {
  fw::enforce_ang_axis(a);
  return a;
}

TEST(EnforceAngleAxis, BringsTheAxisToUnitLengthAndKeepsTheAngle) {
  EXPECT_EQ(enforced({0, 0, 2, 1.5}), (Vector{0, 0, 1, 1.5}));
  EXPECT_EQ(enforced({0, 0, -2, -100.5}), (Vector{0, 0, -1, -100.5}));
  EXPECT_EQ(enforced({3, 0.5}), (Vector{1, 0.5}));  // the shortest that has an axis
  EXPECT_EQ(enforced({3}), (Vector{3}));
  EXPECT_EQ(enforced({}), Vector());
  EXPECT_TRUE(is_close(enforced({3, 4, 0.5}), Vector{0.6, 0.8, 0.5}, tolerance::identity));
  EXPECT_TRUE(is_close(enforced({1, 1, 1, 1, 7}), Vector{0.5, 0.5, 0.5, 0.5, 7}, tolerance::identity));
}

TEST(EnforceAngleAxis, ShrinksAnAxisWithoutADirection) {
  EXPECT_EQ(enforced({1e-9, 0, 0, 1}), (Vector{1e-9 * 1e-16, 0, 0, 1}));
  EXPECT_EQ(enforced({0, 0, 0, 1}), (Vector{0, 0, 0, 1}));
}

TEST(EnforceAngleAxis, TakesASquaredLengthOf1e16AsWithoutADirection) {
  const double length = 1e-8;  // its square is 1e-16 after rounding or just above
  const double below = std::nextafter(length, 0);
  ASSERT_LE(below * below, 1e-16);
  EXPECT_EQ(enforced({below, 0, 1}), (Vector{below * 1e-16, 0, 1}));
  const Vector equal = {6e-9, 8e-9};
  ASSERT_EQ(equal[0] * equal[0] + equal[1] * equal[1], 1e-16);
  EXPECT_EQ(enforced({equal[0], equal[1], 1}), (Vector{equal[0] * 1e-16, equal[1] * 1e-16, 1}));
  const double above = 1.0000001e-8;
  EXPECT_TRUE(is_close(enforced({above, 0, 1}), Vector{1, 0, 1}, tolerance::identity));
}

TEST(EnforceAngleAxis, LeavesVectorsOfUpToOneElementAlone) {
  EXPECT_EQ(enforced({7.5}), (Vector{7.5}));
  EXPECT_EQ(enforced({}), Vector{});
}

TEST(AngleAxisToRotationVector, NormalisesTheAxisBeforeItScalesIt) {
  EXPECT_EQ(fw::ang_axis_to_rot_vec(Vector{0, 0, 2, 0.5}), (Vector{0, 0, 0.5}));
  EXPECT_EQ(fw::ang_axis_to_rot_vec(Vector{0, -3, -2}), (Vector{-0.0, 2}));
  EXPECT_EQ(fw::ang_axis_to_rot_vec(Vector{4, 2}), (Vector{2}));
}

TEST(AngleAxisToMatrix, OfZerosIsTheIdentity) {
  const Vector a = fw::rot_vec_to_ang_axis(Vector{0, 0, 0});
  EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(a), identity, 0));
  EXPECT_TRUE(is_close(fw::rot_vec_rad_to_rot_mat(Vector{0, 0, 0}), identity, 0));
}

TEST(AngleAxisToMatrix, WithoutADirectionIsTheCosineTimesTheIdentity) {
  const double c = std::cos(1.0);
  EXPECT_TRUE(
      is_close(fw::ang_axis_rad_to_rot_mat(Vector{0, 0, 0, 1}), matrix_of({{c, 0, 0}, Vector{0, c, 0}, {0, 0, c}}), 0));
}

TEST(AngleAxisToMatrix, TurnsAboutTheAxesByTheRightHandRule) {
  const double s = std::sin(0.3);
  const double c = std::cos(0.3);
  EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(Vector{1, 0, 0, 0.3}),
                       matrix_of({{1, 0, 0}, Vector{0, c, -s}, {0, s, c}}), tolerance::identity));
  EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(Vector{0, 1, 0, 0.3}),
                       matrix_of({{c, 0, s}, Vector{0, 1, 0}, {-s, 0, c}}), tolerance::identity));
  EXPECT_TRUE(is_close(fw::rot_vec_rad_to_rot_mat(Vector{0, 0, 0.3}),
                       matrix_of({{c, -s, 0}, Vector{s, c, 0}, {0, 0, 1}}), tolerance::identity));
}

TEST(AngleAxisToMatrix, FollowsTheFormulaToTheLastBit) {
  support::Random random(201);
  for (int i = 0; i < 100; ++i) {
    SCOPED_TRACE(testing::Message() << "case " << i << " of seed 201");
    Vector a = random.vector_in_cube(3, 1.0);
    a.push_back(random.uniform(-pi, pi));
    const double scale = 1 / std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double x = a[0] * scale, y = a[1] * scale, z = a[2] * scale;
    const double s = std::sin(a[3]), c = std::cos(a[3]), t = 1 - c;
    const Matrix expected = matrix_of({{x * (t * x) + c, t * x * y - s * z, t * x * z + s * y},
                                       {t * x * y + s * z, y * (t * y) + c, t * y * z - s * x},
                                       {t * x * z - s * y, t * y * z + s * x, z * (t * z) + c}});
    EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(a), expected, 0));
  }
}

TEST(QuaternionToMatrix, HasTheScalarLast) {
  Vector none{0, 0, 0, 2};
  EXPECT_TRUE(is_close(fw::quaternion_to_rot_mat(none), identity, 0));
  Vector half_turn{1, 0, 0, 0};
  EXPECT_TRUE(is_close(fw::quaternion_to_rot_mat(half_turn), matrix_of({{1, 0, 0}, Vector{0, -1, 0}, {0, 0, -1}}), 0));
}

TEST(QuaternionToMatrix, FollowsTheFormulaForAnyLength) {
  Vector q{1, 2, 3, 4};  // squared length 30
  const Matrix expected = matrix_of({{4, -20, 22}, {28, 10, 4}, {-10, 20, 20}});
  const Matrix R = fw::quaternion_to_rot_mat(q);
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) EXPECT_NEAR(R[i][j] * 30, expected[i][j], 30 * tolerance::identity);
  }
}

TEST(QuaternionToMatrix, OfZerosIsNotFinite) {
  Vector zeros(4, 0.0);
  const Matrix R = fw::quaternion_to_rot_mat(zeros);
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) EXPECT_FALSE(std::isfinite(R[i][j])) << i << ", " << j;
  }
}

}  // namespace
