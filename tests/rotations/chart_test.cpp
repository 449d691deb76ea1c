// SPDX-License-Identifier: BSD-3-Clause
// Charts: what a parameter turns the camera by, against dual numbers, and the way back.
#include "rotations/chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "support/camera_model.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/tolerance.h"

namespace {

using kelvane::Chart;
using support::Case;

constexpr std::uint64_t seed = 71411;
using Entries = std::vector<double>;

/// Column j of W: the turn in R' dR/dr_j by dual numbers.
template <std::size_t n, typename Matrix>
Entries turn(const Matrix& R, std::size_t j) {
  const auto entry = [&](std::size_t row, std::size_t column) {
    double sum = 0.0;
    for (std::size_t k = 0; k < 3; ++k) sum += R[k][row].value * R[k][column].derivatives[j];
    return sum;
  };
  return {0.5 * (entry(2, 1) - entry(1, 2)), 0.5 * (entry(0, 2) - entry(2, 0)), 0.5 * (entry(1, 0) - entry(0, 1))};
}

template <std::size_t n, typename Matrix>
void expect_chart(Chart& chart, const Matrix& dual) {
  ASSERT_TRUE(chart.make());
  Entries actual;
  Entries expected;
  for (std::size_t j = 0; j < n; ++j) {
    for (const auto& row : chart.W) actual.push_back(row[j]);
    const Entries column = turn<n>(dual, j);
    expected.insert(expected.end(), column.begin(), column.end());
  }
  EXPECT_TRUE(support::is_close(actual, expected, tolerance::closed_form));
}

TEST(Chart, TurnsAsDualNumbersDo) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed, number);
    if (which.regime == support::Regime::identity) continue;  // the guards lead to another rotation
    SCOPED_TRACE(which);
    const Entries a =
        support::scaled(support::random_angle_axis(which.regime, which.random), 3, which.random.uniform(0.5, 2.0));
    const Entries r = support::rotation_vector_from(support::random_angle_axis(which.regime, which.random));
    const Entries q = support::scaled(support::quaternion_from(a), 4, which.random.uniform(0.5, 2.0));
    Chart chart;
    kelvane::rotation_vector_model(r.data(), chart.model);
    expect_chart<3>(chart, support::rotation_of_vector(support::variables<3>(r)));
    kelvane::angle_axis_model(a.data(), chart.model);
    expect_chart<4>(chart, support::rotation_of_angle_axis(support::variables<4>(a)));
    kelvane::quaternion_model(q.data(), chart.model);
    expect_chart<4>(chart, support::rotation_of_quaternion(support::variables<4>(q)));
  }
}

TEST(Chart, IsNotThereWhereTheModelDoesNotTurnOrIsNotFinite) {
  Chart chart;
  const double q[] = {0.1, 0.2, 0.3, 0.9};
  kelvane::unit_quaternion_model(q, chart.model);
  EXPECT_FALSE(chart.make());
  const double bad[] = {0.1, 0.2, 0.3, std::nan("")};
  kelvane::angle_axis_model(bad, chart.model);
  EXPECT_FALSE(chart.make());
  const double r[] = {0.1, 0.2, 0.3};
  kelvane::rotation_vector_model(r, chart.model);
  chart.model.dR[2][1][0] = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(chart.make());
}

/// W dr
Entries times(const Chart& chart, const Entries& dr) {
  Entries omega(3, 0.0);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < dr.size(); ++j) omega[i] += chart.W[i][j] * dr[j];
  }
  return omega;
}

TEST(ChartTurn, IsTheShortestWithThatTurn) {
  for (std::uint64_t number = 0; number < 1000; ++number) {
    Case which(seed + 1, number);
    SCOPED_TRACE(which);
    Entries q = support::quaternion_from(support::random_angle_axis(support::Regime::ordinary, which.random));
    q = support::scaled(q, 4, which.random.magnitude(-3.0, 3.0));
    Chart chart;
    kelvane::quaternion_model(q.data(), chart.model);
    ASSERT_TRUE(chart.make());
    const Entries omega = which.random.vector_in_cube(3, 0.1);
    Entries dq(4);
    ASSERT_TRUE(kelvane::turn_parameters(chart, omega.data(), dq.data()));
    EXPECT_TRUE(support::is_close(times(chart, dq), omega, 1e-14));
    double along = 0.0;
    double size = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
      along += q[i] * dq[i];
      size += std::abs(q[i] * dq[i]);
    }
    EXPECT_LE(std::abs(along), 1e-14 * size) << "the length of a quaternion is free";
  }
}

TEST(ChartTurn, KeepsItsDigitsNearAFullTurnAsTheConditionAllows) {
  const std::vector<double> axis = {0.48, 0.64, 0.6};
  for (const double distance : {1e-7, 1e-5, 1e-3, 0.1}) {
    const double angle = 2.0 * support::pi + distance;
    const double r[] = {axis[0] * angle, axis[1] * angle, axis[2] * angle};
    Chart chart;
    kelvane::rotation_vector_model(r, chart.model);
    ASSERT_TRUE(chart.make());
    const Entries omega = {0.1, -0.2, 0.3};
    Entries dr(3);
    ASSERT_TRUE(kelvane::turn_parameters(chart, omega.data(), dr.data()));
    // What rounding dr alone does.
    const double length = std::hypot(dr[0], dr[1], dr[2]);
    EXPECT_TRUE(support::is_close(times(chart, dr), omega, 1e-15 * length)) << distance;
    EXPECT_GT(length, 0.1 / distance);
  }
}

TEST(ChartTurn, IsRefusedWhereTheTurnIsNotPlainlyFree) {
  for (const double angle : {2.0 * support::pi, 2.0 * support::pi + 1e-9, 4.0 * support::pi}) {
    const double r[] = {0.48 * angle, 0.64 * angle, 0.6 * angle};
    Chart chart;
    kelvane::rotation_vector_model(r, chart.model);
    ASSERT_TRUE(chart.make());
    const Entries omega = {0.1, -0.2, 0.3};
    Entries dr(3);
    EXPECT_FALSE(kelvane::turn_parameters(chart, omega.data(), dr.data())) << angle;
  }
}

TEST(ChartColumn, TurnsByWOrShiftsByTheTransposedRotation) {
  const Entries a = {0.2, -0.5, 0.4, 1.1};
  Chart chart;
  kelvane::angle_axis_model(a.data(), chart.model);
  ASSERT_TRUE(chart.make());
  const auto expect_column = [&](std::size_t j, std::size_t first, const Entries& entries) {
    const kelvane::Chart_column column = kelvane::column_of(chart, j);
    EXPECT_EQ(column.first, first) << j;
    EXPECT_EQ(Entries(column.entries, column.entries + 3), entries) << j;
  };
  for (std::size_t j = 0; j < 4; ++j) expect_column(j, 3, {chart.W[0][j], chart.W[1][j], chart.W[2][j]});
  for (std::size_t j = 0; j < 3; ++j) {
    const auto& R = chart.model.R;
    expect_column(4 + j, 0, {R[j][0], R[j][1], R[j][2]});
    const Entries v = {j == 0 ? 1.0 : 0.0, j == 1 ? 1.0 : 0.0, j == 2 ? 1.0 : 0.0};
    double dt[3];
    kelvane::shift_parameters(chart, v.data(), dt);  // R v, so that v = R' dt
    EXPECT_EQ(Entries(dt, dt + 3), Entries({R[0][j], R[1][j], R[2][j]}));
  }
}

}  // namespace
