// SPDX-License-Identifier: BSD-3-Clause
// Each rotation model and its derivatives, entry by entry against dual numbers and against the conversions.
#include "rotations/rotation_models.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "fw_tools/rotation.h"
#include "support/camera_model.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using kelvane::Rotation_model;
using support::Case;

constexpr std::uint64_t seed = 90210;

// By value, for one line each.
Rotation_model rotation_vector_model(const double* r) {
  Rotation_model model;
  kelvane::rotation_vector_model(r, model);
  return model;
}
Rotation_model angle_axis_model(const double* a) {
  Rotation_model model;
  kelvane::angle_axis_model(a, model);
  return model;
}
Rotation_model quaternion_model(const double* q) {
  Rotation_model model;
  kelvane::quaternion_model(q, model);
  return model;
}
Rotation_model unit_quaternion_model(const double* q) {
  Rotation_model model;
  kelvane::unit_quaternion_model(q, model);
  return model;
}

using Entries = std::vector<double>;

template <std::size_t n_r, typename Matrix>
Entries derivative_of(const Matrix& R, std::size_t j) {
  Entries entries;
  for (const auto& row : R) {
    for (const support::Dual<n_r>& entry : row) entries.push_back(entry.derivatives[j]);
  }
  return entries;
}

template <std::size_t n_r, typename Matrix>
Entries values_of(const Matrix& R) {
  Entries entries;
  for (const auto& row : R) {
    for (const support::Dual<n_r>& entry : row) entries.push_back(entry.value);
  }
  return entries;
}

Entries flat(const double (&m)[3][3]) { return {&m[0][0], &m[0][0] + 9}; }

/// R and each dR/dr_j; the largest entry of all derivatives sets the scale of each.
template <std::size_t n_r, typename Matrix>
void expect_agreement(const Rotation_model& model, const Matrix& dual) {
  EXPECT_EQ(model.n, n_r);
  EXPECT_TRUE(support::is_close(flat(model.R), values_of<n_r>(dual), tolerance::identity)) << "R";
  Entries actual;
  Entries expected;
  for (std::size_t j = 0; j < n_r; ++j) {
    const Entries dR = flat(model.dR[j]);
    const Entries dual_dR = derivative_of<n_r>(dual, j);
    actual.insert(actual.end(), dR.begin(), dR.end());
    expected.insert(expected.end(), dual_dR.begin(), dual_dR.end());
  }
  EXPECT_TRUE(support::is_close(actual, expected, tolerance::closed_form)) << "dR, nine entries for each parameter";
}

TEST(RotationVectorModel, AgreesWithDualNumbers) {
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    auto r = support::rotation_vector_from(support::random_angle_axis(which.regime, which.random));
    const auto model = rotation_vector_model(r.data());
    if (r[0] == 0.0 && r[1] == 0.0 && r[2] == 0.0) r = {1e-9, 1e-9, 1e-9};
    expect_agreement<3>(model, support::rotation_of_vector(support::variables<3>(r)));
    if (HasFailure()) break;
  }
}

TEST(AngleAxisModel, AgreesWithDualNumbers) {
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    const auto unit = support::random_angle_axis(which.regime, which.random);
    const auto a = support::scaled(unit, 3, which.random.uniform(0.5, 2.0));
    expect_agreement<4>(angle_axis_model(a.data()), support::rotation_of_angle_axis(support::variables<4>(a)));
    if (HasFailure()) break;
  }
}

TEST(QuaternionModel, AgreesWithDualNumbers) {
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed + 2, number);
    SCOPED_TRACE(which);
    const auto unit = support::quaternion_from(support::random_angle_axis(which.regime, which.random));
    auto q = support::scaled(unit, 4, which.random.uniform(0.5, 2.0));
    const auto model = quaternion_model(q.data());
    if (q[0] == 0.0 && q[1] == 0.0 && q[2] == 0.0) q[0] = q[1] = q[2] = 1e-9;
    expect_agreement<4>(model, support::rotation_of_quaternion(support::variables<4>(q)));
    if (HasFailure()) break;
  }
}

TEST(UnitQuaternionModel, AgreesWithDualNumbersAwayFromUnitLengthToo) {
  for (std::uint64_t number = 0; number < 2000; ++number) {
    Case which(seed + 3, number);
    SCOPED_TRACE(which);
    const auto unit = support::quaternion_from(support::random_angle_axis(which.regime, which.random));
    const auto q = support::scaled(unit, 4, which.random.uniform(0.5, 2.0));
    expect_agreement<4>(unit_quaternion_model(q.data()), support::matrix_of_unit_quaternion(support::variables<4>(q)));
    if (HasFailure()) break;
  }
}

TEST(UnitQuaternionModel, HasTheDiagonalInUnsquaredEntries) {
  const double q[] = {0.5, 0.25, 0.125, 3.0};
  const Rotation_model model = unit_quaternion_model(q);
  EXPECT_EQ(model.R[0][0], 1 - 2 * 0.25 - 2 * 0.125);
  EXPECT_EQ(model.R[1][1], 1 - 2 * 0.5 - 2 * 0.125);
  EXPECT_EQ(model.R[2][2], 1 - 2 * 0.5 - 2 * 0.25);
  const double diagonals[4][3] = {{0, -2, -2}, {-2, 0, -2}, {-2, -2, 0}, {0, 0, 0}};
  for (int j = 0; j < 4; ++j) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(model.dR[j][i][i], diagonals[j][i]) << "entry " << j << ", diagonal " << i;
  }
}

TEST(RotationModels, GiveTheMatricesOfTheConversions) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed + 4, number);
    if (which.regime == support::Regime::identity) continue;  // there the guards lead to another rotation
    SCOPED_TRACE(which);
    const auto a = support::random_angle_axis(which.regime, which.random);
    const auto r = support::rotation_vector_from(a);
    auto q = support::quaternion_from(a);
    const auto is_same = [](const double(&R)[3][3], const fw::matrix<double>& converted) {
      return support::is_close(flat(R), support::Table(converted).values, tolerance::identity);
    };
    ASSERT_TRUE(is_same(rotation_vector_model(r.data()).R, fw::rot_vec_rad_to_rot_mat(r)));
    ASSERT_TRUE(is_same(angle_axis_model(a.data()).R, fw::ang_axis_rad_to_rot_mat(a)));
    ASSERT_TRUE(is_same(quaternion_model(q.data()).R, fw::quaternion_to_rot_mat(q)));
  }
}

TEST(RotationVectorModel, ReplacesOnlyTheExactZero) {
  const double zero[] = {0.0, -0.0, 0.0};
  const double replacement[] = {1e-9, 1e-9, 1e-9};
  EXPECT_EQ(flat(rotation_vector_model(zero).R), flat(rotation_vector_model(replacement).R));
  const double tiny[] = {1e-60, 0.0, 0.0};
  const Rotation_model model = rotation_vector_model(tiny);
  EXPECT_EQ(model.R[2][1], 1e-60);
  EXPECT_EQ(model.R[0][1], 0.0);
}

TEST(RotationVectorModel, TendsToTheCrossProductDownToTheUnderflowOfTheSquare) {
  for (const double length : {1e-60, 1e-78, 1e-103, 1e-150}) {
    SCOPED_TRACE(length);
    const double r[3] = {0.6 * length, -0.48 * length, 0.64 * length};
    const Rotation_model model = rotation_vector_model(r);
    EXPECT_TRUE(support::is_close(flat(model.dR[0]), Entries{0, 0, 0, 0, 0, -1, 0, 1, 0}, tolerance::identity));
    EXPECT_TRUE(support::is_close(flat(model.dR[1]), Entries{0, 0, 1, 0, 0, 0, -1, 0, 0}, tolerance::identity));
    EXPECT_TRUE(support::is_close(flat(model.dR[2]), Entries{0, -1, 0, 1, 0, 0, 0, 0, 0}, tolerance::identity));
  }
}

TEST(QuaternionModel, ReplacesAZeroVectorPartAndKeepsTheScalar) {
  for (const double w : {1.0, 0.0, -2.5}) {
    const double zero[] = {0.0, 0.0, 0.0, w};
    const double replacement[] = {1e-9, 1e-9, 1e-9, w};
    const Rotation_model model = quaternion_model(zero);
    const Rotation_model expected = quaternion_model(replacement);
    EXPECT_EQ(flat(model.R), flat(expected.R)) << w;
    for (int j = 0; j < 4; ++j) EXPECT_EQ(flat(model.dR[j]), flat(expected.dR[j])) << w;
  }
}

TEST(RotationModels, TurnUntilTheirSquaresLeaveTheRange) {
  for (const double size : {1e-140, 1e-3, 1.0, 1e3, 1e140}) {
    const double r[] = {0.6 * size, 0.0, 0.8 * size, 0.5};
    EXPECT_TRUE(rotation_vector_model(r).turns) << size;
    EXPECT_TRUE(angle_axis_model(r).turns) << size;
  }
  for (const double size : {1e-160, 1e-150, 1e150, 1e200, std::nan("")}) {
    const double q[] = {0.6 * size, 0.0, 0.8 * size, 0.5 * size};
    EXPECT_FALSE(rotation_vector_model(q).turns) << size;
    EXPECT_FALSE(angle_axis_model(q).turns) << size;
    EXPECT_FALSE(quaternion_model(q).turns) << size;
  }
  const double no_rotation[] = {0.0, 0.0, 0.0, 1.0};
  EXPECT_TRUE(rotation_vector_model(no_rotation).turns);
  EXPECT_TRUE(quaternion_model(no_rotation).turns);
  EXPECT_FALSE(angle_axis_model(no_rotation).turns);
  EXPECT_FALSE(unit_quaternion_model(no_rotation).turns);
}

TEST(CarryingOver, IsTheChainRule) {
  for (std::uint64_t number = 0; number < 200; ++number) {
    Case which(seed + 6, number);
    const std::vector<double> a = {0.3, -0.4, 0.5, which.random.uniform(0.1, 3.0)};
    double F[4][3];
    for (auto& row : F) {
      for (double& entry : row) entry = which.random.uniform(-1.0, 1.0);
    }
    const Rotation_model model = angle_axis_model(a.data());
    Rotation_model carried = model;
    kelvane::carry_over(F, carried);
    EXPECT_EQ(carried.n, 3U);
    EXPECT_TRUE(carried.turns);
    EXPECT_EQ(flat(carried.R), flat(model.R));
    for (std::size_t j = 0; j < 3; ++j) {
      Entries expected(9, 0.0);
      for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t k = 0; k < 9; ++k) expected[k] += F[i][j] * flat(model.dR[i])[k];
      }
      EXPECT_TRUE(support::is_close(flat(carried.dR[j]), expected, 1e-15));
    }
  }
}

TEST(AngleAxisModel, GivesNanForAZeroAxis) {
  const double a[] = {0.0, 0.0, 0.0, 0.5};
  const Rotation_model model = angle_axis_model(a);
  for (const double entry : flat(model.R)) EXPECT_TRUE(std::isnan(entry));
  for (const auto& dR : model.dR) {
    for (const double entry : flat(dR)) EXPECT_FALSE(std::isfinite(entry));
  }
}

}  // namespace
