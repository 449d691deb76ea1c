// SPDX-License-Identifier: BSD-3-Clause
// Properties of the rotation conversions over all regimes of rotations.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "fw_tools/rotation.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/rotation_reference.h"
#include "support/tolerance.h"

namespace {

using Matrix = fw::matrix<double>;
using Vector = std::vector<double>;
using support::Case;
using support::is_close;
using support::Regime;

constexpr std::uint64_t number_of_cases = 2000;

const Matrix identity = support::matrix_of({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});

double determinant(const Matrix& R) {
  return R[0][0] * (R[1][1] * R[2][2] - R[1][2] * R[2][1]) - R[0][1] * (R[1][0] * R[2][2] - R[1][2] * R[2][0]) +
         R[0][2] * (R[1][0] * R[2][1] - R[1][1] * R[2][0]);
}

void expect_proper_rotation(const Matrix& R) {
  EXPECT_TRUE(is_close(R * R.transpose(), identity, tolerance::identity));
  EXPECT_NEAR(determinant(R), 1.0, tolerance::identity);
}

/// An axis that was divided by the sine of a rounded angle has a wrong length long before it has a wrong direction.
Vector with_unit_axis(Vector a) {
  const double length = std::hypot(a[0], a[1], a[2]);
  return support::scaled(std::move(a), 3, 1 / length);
}

/// Calls check(case, unit angle-axis) for every case, until one has failed.
template <typename Check>
void for_each_rotation(std::uint64_t seed, Check check) {
  for (std::uint64_t i = 0; i < number_of_cases && !testing::Test::HasFailure(); ++i) {
    Case which(seed, i);
    SCOPED_TRACE(testing::Message() << which);
    const Vector a = support::random_angle_axis(which.regime, which.random);
    check(which, a);
  }
}

TEST(RotationVectorToMatrix, IsTheExponential) {
  for_each_rotation(101, [](Case&, const Vector& a) {
    const Vector r = support::rotation_vector_from(a);
    const Matrix R = fw::rot_vec_rad_to_rot_mat(r);
    EXPECT_TRUE(is_close(R, support::rotation_by_series(r), tolerance::identity));
    expect_proper_rotation(R);
  });
}

TEST(AngleAxisToMatrix, IsTheExponentialForAxesOfAnyLength) {
  for_each_rotation(102, [](Case& which, const Vector& a) {
    const Matrix R = fw::ang_axis_rad_to_rot_mat(support::scaled(a, 3, which.random.magnitude(-6.0, 6.0)));
    EXPECT_TRUE(is_close(R, support::rotation_by_series(support::rotation_vector_from(a)), tolerance::identity));
    expect_proper_rotation(R);
  });
}

TEST(QuaternionToMatrix, IsTheConjugationForQuaternionsOfAnyLength) {
  for_each_rotation(103, [](Case& which, const Vector& a) {
    const Vector unit = support::quaternion_from(a);
    Vector q = support::scaled(unit, 4, which.random.magnitude(-6.0, 6.0));
    const Vector before = q;
    const Matrix R = fw::quaternion_to_rot_mat(q);
    EXPECT_EQ(q, before);
    EXPECT_TRUE(is_close(R, support::rotation_by_conjugation(unit), tolerance::identity));
    EXPECT_TRUE(is_close(R, support::rotation_by_series(support::rotation_vector_from(a)), tolerance::identity));
    expect_proper_rotation(R);
  });
}

TEST(QuaternionToMatrix, GivesAQuaternionAndItsNegativeOneRotation) {
  for_each_rotation(104, [](Case&, const Vector& a) {
    Vector q = support::quaternion_from(a);
    Vector negative = support::scaled(q, 4, -1.0);
    EXPECT_TRUE(is_close(fw::quaternion_to_rot_mat(q), fw::quaternion_to_rot_mat(negative), 0.0));
  });
}

TEST(QuaternionToMatrix, TurnsAProductIntoAProduct) {
  for_each_rotation(105, [](Case& which, const Vector& a) {
    Vector p = support::quaternion_from(a);
    Vector q = support::quaternion_from(support::random_angle_axis(Regime::ordinary, which.random));
    Vector pq = support::quaternion_product(p, q);
    EXPECT_TRUE(is_close(fw::quaternion_to_rot_mat(pq), fw::quaternion_to_rot_mat(p) * fw::quaternion_to_rot_mat(q),
                         tolerance::identity));
  });
}

TEST(MatrixToQuaternion, ReturnsTheUnitQuaternionUpToItsSign) {
  for_each_rotation(106, [](Case&, const Vector& a) {
    const Vector q = support::quaternion_from(a);
    const Vector back = fw::rot_mat_to_quaternion(support::rotation_by_conjugation(q));
    const double dot = q[0] * back[0] + q[1] * back[1] + q[2] * back[2] + q[3] * back[3];
    EXPECT_TRUE(is_close(back, support::scaled(q, 4, dot < 0 ? -1.0 : 1.0), tolerance::identity));
  });
}

TEST(MatrixToQuaternion, AndBackGivesTheMatrix) {
  for_each_rotation(107, [](Case&, const Vector& a) {
    const Matrix R = support::rotation_by_series(support::rotation_vector_from(a));
    Vector q = fw::rot_mat_to_quaternion(R);
    EXPECT_TRUE(is_close(fw::quaternion_to_rot_mat(q), R, tolerance::identity));
  });
}

TEST(RotationVectorToAngleAxis, AndBackGivesTheVector) {
  for_each_rotation(108, [](Case&, const Vector& a) {
    const Vector r = support::rotation_vector_from(a);
    const Vector angle_axis = fw::rot_vec_to_ang_axis(r);
    EXPECT_NEAR(angle_axis[3], std::abs(a[3]), tolerance::identity * std::abs(a[3]));
    const Vector back = fw::ang_axis_to_rot_vec(angle_axis);
    for (unsigned k = 0; k < 3; ++k) EXPECT_NEAR(back[k], r[k], tolerance::identity * std::abs(a[3]));
  });
}

TEST(MatrixToAngleAxis, AndBackGivesTheMatrix) {
  for_each_rotation(109, [](Case& which, const Vector&) {
    // Away from the angles 0 and pi, where the sine that is divided by loses its digits.
    Vector a = which.random.direction(3);
    a.push_back(which.random.uniform(1e-2, support::pi - 1e-2));
    const Matrix R = support::rotation_by_series(support::rotation_vector_from(a));
    const Vector back = fw::rot_mat_to_ang_axis_rad(R);
    EXPECT_TRUE(is_close(with_unit_axis(back), a, tolerance::identity));
    EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(back), R, tolerance::identity));
    EXPECT_TRUE(is_close(fw::rot_mat_to_rot_vec_rad(R), support::rotation_vector_from(a), tolerance::identity));
  });
}

TEST(MatrixToAngleAxis, LosesOnlyWhatTheSineLosesNearPiAndNearZero) {
  for_each_rotation(110, [](Case& which, const Vector&) {
    Vector a = which.random.direction(3);
    const double distance = which.random.magnitude(-5.0, -2.0);
    a.push_back(which.number % 2 == 0 ? support::pi - distance : distance);
    const Matrix R = support::rotation_by_series(support::rotation_vector_from(a));
    const Vector back = fw::rot_mat_to_ang_axis_rad(R);
    EXPECT_TRUE(is_close(with_unit_axis(back), a, tolerance::identity_near_pi));
    EXPECT_TRUE(is_close(fw::ang_axis_rad_to_rot_mat(back), R, tolerance::identity_near_pi));
  });
}

TEST(MatrixToAngleAxis, NeverLeavesAnAngleOfMoreThanPi) {
  for_each_rotation(111, [](Case&, const Vector& a) {
    const Matrix R = support::rotation_by_series(support::rotation_vector_from(a));
    const double angle = fw::rot_mat_to_ang_axis_rad(R)[3];
    EXPECT_GE(angle, 0.0);
    EXPECT_LE(angle, support::pi);
    // The angle itself, folded into 0 to pi; near both ends the arc cosine keeps half of its digits.
    EXPECT_NEAR(angle, std::abs(std::remainder(a[3], 2 * support::pi)), 2e-6);
  });
}

}  // namespace
