// SPDX-License-Identifier: BSD-3-Clause
// Every branch of the conversions from a rotation matrix: the half turns of the angle-axis and the four divisors of the
// quaternion. Matrices that are no rotations tell the branches apart where rotations could not.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "fw_tools/rotation.h"
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

/// 2 u u' - 1 for u of the given direction.
Matrix half_turn_about(double x, double y, double z) {
  const double k = 2 / (x * x + y * y + z * z);
  return matrix_of({{x * x * k - 1, x * y * k, x * z * k},
                    {x * y * k, y * y * k - 1, y * z * k},
                    {x * z * k, y * z * k, z * z * k - 1}});
}

void expect_half_turn(const Matrix& R, const Vector& axis) {
  const Vector a = fw::rot_mat_to_ang_axis_rad(R);
  EXPECT_TRUE(is_close(a, Vector{axis[0], axis[1], axis[2], pi}, tolerance::identity));
  EXPECT_EQ(a[3], pi);
  for (unsigned k = 0; k < 3; ++k) EXPECT_EQ(std::signbit(a[k]), std::signbit(axis[k])) << "element " << k;
}

const double half_root = std::sqrt(0.5);
const double third_root = std::sqrt(1.0 / 3);

TEST(HalfTurnToAngleAxis, IsExactAboutACoordinateAxis) {
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(matrix_of({{1, 0, 0}, {0, -1, 0}, {0, 0, -1}})), (Vector{1, 0, 0, pi}));
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(matrix_of({{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}})), (Vector{0, 1, 0, pi}));
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(matrix_of({{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}})), (Vector{0, 0, 1, pi}));
}

TEST(HalfTurnToAngleAxis, HasNoMinusWithoutANegativeProductOfYAndZ) {
  expect_half_turn(half_turn_about(0, 1, 1), {0, half_root, half_root});
  expect_half_turn(half_turn_about(1, 1, 1), {third_root, third_root, third_root});
}

TEST(HalfTurnToAngleAxis, PutsTheMinusOnTheFirstElementWhenTheProductOfYAndZIsNegative) {
  // Not the true axis, whose minus belongs to y or z; here the first element is even zero.
  expect_half_turn(matrix_of({{-1, 0, 0}, {0, 0, -1}, {0, -1, 0}}), {-0.0, half_root, half_root});
  expect_half_turn(half_turn_about(1, 1, -1), {-third_root, third_root, third_root});
  expect_half_turn(half_turn_about(1, -1, 1), {-third_root, third_root, third_root});
}

TEST(HalfTurnToAngleAxis, IgnoresTheOtherTwoProducts) {
  expect_half_turn(half_turn_about(1, -1, 0), {half_root, half_root, 0});
  expect_half_turn(half_turn_about(1, 0, -1), {half_root, 0, half_root});
  expect_half_turn(half_turn_about(-1, 1, 1), {third_root, third_root, third_root});
}

TEST(HalfTurnToAngleAxis, TakesAProductWithin1e12OfZeroForZero) {
  Matrix R = half_turn_about(1, 0, 0);
  R.set(1, 2, -0.9e-12);
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(R), (Vector{1, 0, 0, pi}));
  R.set(1, 2, -1.1e-12);
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(R), (Vector{-1, 0, 0, pi}));
}

TEST(HalfTurnToAngleAxis, ProbesOnlyTheElementAboveTheDiagonal) {
  Matrix R = half_turn_about(1, 0, 0);
  R.set(2, 1, -0.5);
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(R), (Vector{1, 0, 0, pi}));
}

TEST(HalfTurnToAngleAxis, TakesADiagonalBelowMinusOneForMinusOne) {
  const Matrix R = matrix_of({{1, 0, 0}, {0, -1 - 4e-13, 0}, {0, 0, -1}});
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(R), (Vector{1, 0, 0, pi}));
}

TEST(HalfTurnToAngleAxis, IsTakenForATraceWithin1e12OfMinusOneOnly) {
  // The product of y and z makes the two branches differ: the general one finds no axis in a symmetric matrix.
  const auto with_trace_raised = [](double by) { return matrix_of({{-1, 0, 0}, {0, by, 1}, {0, 1, 0}}); };
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(with_trace_raised(0.9e-12))[3], pi);
  EXPECT_EQ(fw::rot_mat_to_ang_axis_rad(with_trace_raised(-0.9e-12))[3], pi);
  EXPECT_GT(fw::rot_mat_to_ang_axis_rad(with_trace_raised(0.9e-12))[1], 0.7);
  const Vector general = fw::rot_mat_to_ang_axis_rad(with_trace_raised(1.2e-12));
  EXPECT_EQ((Vector{general[0], general[1], general[2]}), (Vector{0, 0, 0}));
  EXPECT_LT(general[3], pi);
  EXPECT_TRUE(std::isnan(fw::rot_mat_to_ang_axis_rad(with_trace_raised(-1.2e-12))[3]));  // beyond the arc cosine
}

TEST(HalfTurnToAngleAxis, IsTakenForATraceThatIsNoNumber) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const Vector a = fw::rot_mat_to_ang_axis_rad(matrix_of({{1, 0, 0}, {0, nan, 0}, {0, 0, -1}}));
  EXPECT_EQ((Vector{a[0], a[2], a[3]}), (Vector{1, 0, pi}));
}

TEST(MatrixToQuaternion, OfTheIdentityHasTheScalarLast) {
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}})), (Vector{0, 0, 0, 1}));
}

TEST(MatrixToQuaternion, OfAHalfTurnIsItsAxis) {
  EXPECT_EQ(fw::rot_mat_to_quaternion(half_turn_about(1, 0, 0)), (Vector{1, 0, 0, 0}));
  EXPECT_EQ(fw::rot_mat_to_quaternion(half_turn_about(0, 1, 0)), (Vector{0, 1, 0, 0}));
  EXPECT_EQ(fw::rot_mat_to_quaternion(half_turn_about(0, 0, 1)), (Vector{0, 0, 1, 0}));
}

TEST(MatrixToQuaternion, DividesByTheScalarWhenTheTraceIsPositive) {
  // Trace 3: S is 1/4 and the scalar 1.
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{1, 8, 16}, {20, 1, 28}, {56, 44, 1}})), (Vector{4, -10, 3, 1}));
}

TEST(MatrixToQuaternion, DividesByXWhenTheFirstDiagonalElementIsTheLargest) {
  // The root of 1 + 2 + 4 + 2 is 3, so S is 6.
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{2, 12, 18}, {24, -4, 30}, {36, 60, -2}})), (Vector{1.5, 6, 9, 5}));
}

TEST(MatrixToQuaternion, DividesByYWhenTheSecondDiagonalElementIsTheLargest) {
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{-4, 12, 18}, {24, 2, 30}, {36, 60, -2}})), (Vector{6, 1.5, 15, -3}));
}

TEST(MatrixToQuaternion, DividesByZOtherwise) {
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{-4, 12, 18}, {24, -2, 30}, {36, 60, 2}})), (Vector{9, 15, 1.5, 2}));
}

TEST(MatrixToQuaternion, TakesATraceOfZeroAsNotPositive) {
  // With zeros on the diagonal z decides: S is 2. A positive trace would have given (15, -9, 6, 0.5).
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{0, 12, 18}, {24, 0, 30}, {36, 60, 0}})), (Vector{27, 45, 0.5, 6}));
}

TEST(MatrixToQuaternion, GivesTiesOnTheDiagonalToTheLaterAxis) {
  // x and y tie: y, with S = 2 root(1 + 0 - 0 + 0.0 + 8) = 6.
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{0, 12, 18}, {24, 0, 30}, {36, 60, -8}})), (Vector{6, 1.5, 15, -3}));
  // x and z tie: z.
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{0, 12, 18}, {24, -8, 30}, {36, 60, 0}})), (Vector{9, 15, 1.5, 2}));
  // y and z tie: z.
  EXPECT_EQ(fw::rot_mat_to_quaternion(matrix_of({{-8, 12, 18}, {24, 0, 30}, {36, 60, 0}})), (Vector{9, 15, 1.5, 2}));
}

TEST(MatrixToQuaternion, LeavesTheSignOfTheScalarAsItComes) {
  // A quarter turn and more about -x: the branch that divides by x makes x positive and the scalar negative.
  const double angle = -2.5;
  const Matrix R =
      matrix_of({{1, 0, 0}, {0, std::cos(angle), -std::sin(angle)}, {0, std::sin(angle), std::cos(angle)}});
  EXPECT_TRUE(
      is_close(fw::rot_mat_to_quaternion(R), Vector{std::sin(1.25), 0, 0, -std::cos(1.25)}, tolerance::identity));
}

TEST(MatrixToQuaternion, LeavesItsArgumentAlone) {
  const Matrix R = half_turn_about(1, 2, 3);
  const Matrix before = R;
  static_cast<void>(fw::rot_mat_to_quaternion(R));
  EXPECT_TRUE(is_close(R, before, 0));
}

}  // namespace
