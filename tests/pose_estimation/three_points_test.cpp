// SPDX-License-Identifier: BSD-3-Clause
// Poses of three points, against roots that are found in another way and with more digits.
#include "pose_estimation/three_points.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "support/long_round.h"
#include "support/long_run.h"
#include "support/refined_problems.h"
#include "support/three_point_roots.h"
#include "support/tolerance.h"

namespace {

using kelvane::Pose;
using support::Distances, support::Long, support::Long_triangle, support::Random;

constexpr std::uint64_t seed = 19001;

struct Triple {
  double points[3][3], directions[3][3];
};

/// How far off the axis the points are seen, radians, and how far away.
struct Kind {
  const char* name;
  double angle, nearest, farthest;
  bool is_seen;      ///< or points and directions have nothing to do with each other
  double most_lost;  ///< part of the triples: of nearly parallel rays rounding hides some solutions
};
constexpr Kind kinds[] = {{"Ordinary", 0.6, 2.0, 6.0, true, 0.0},    {"AllRound", 3.1, 1.0, 3.0, true, 0.0},
                          {"Narrow", 0.03, 2.0, 6.0, true, 0.0},     {"NearAndFar", 0.9, 0.05, 20.0, true, 0.0},
                          {"FarAway", 0.01, 50.0, 51.0, true, 1e-3}, {"Unrelated", 0.6, 2.0, 6.0, false, 0.0}};

Triple random_triple(const Kind& kind, Random& random) {
  const std::vector<double> turn = random.vector_in_cube(3, 3.0);
  const Pose pose = support::pose_at({turn[0], turn[1], turn[2]}, {0.3, -0.2, 0.1});
  Triple triple{};
  for (int k = 0; k < 3; ++k) {
    const double height = random.uniform(std::cos(kind.angle), 1.0), about = random.uniform(0.0, 2.0 * support::pi);
    const double across = std::sqrt(1.0 - height * height);
    const double d[3] = {across * std::cos(about), across * std::sin(about), height};
    const double distance = random.uniform(kind.nearest, kind.farthest);
    for (std::size_t i = 0; i < 3; ++i) {
      triple.directions[k][i] = d[i];
      for (std::size_t j = 0; j < 3; ++j) triple.points[k][i] += pose.rotation[i][j] * distance * d[j];
      triple.points[k][i] += pose.centre[i];
      if (!kind.is_seen) triple.points[k][i] = random.uniform(-1.0, 1.0);
    }
  }
  return triple;
}

/// Of the points from the camera; and how far, in parts of the longest, one is off its direction.
Distances distances_of(const Pose& pose, const Triple& triple, Long& off) {
  Distances s{};
  off = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    Long across = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t i = 0; i < 3; ++i) {
        s[k] += Long{triple.directions[k][j]} * pose.rotation[i][j] * (Long{triple.points[k][i]} - pose.centre[i]);
      }
    }
    for (std::size_t j = 0; j < 3; ++j) {
      Long p = 0;
      for (std::size_t i = 0; i < 3; ++i) p += pose.rotation[i][j] * (Long{triple.points[k][i]} - pose.centre[i]);
      across += (p - s[k] * triple.directions[k][j]) * (p - s[k] * triple.directions[k][j]);
    }
    off = std::max(off, std::sqrt(across));
  }
  off /= *std::max_element(s.begin(), s.end());
  return s;
}

/// The largest difference, in parts of the longest.
Long difference(const Distances& a, const Distances& b) {
  Long most = 0;
  for (std::size_t k = 0; k < 3; ++k) most = std::max(most, std::abs(a[k] - b[k]));
  return most / *std::max_element(b.begin(), b.end());
}

Long nearest(const Distances& one, const std::vector<Distances>& all) {
  Long least = 1;
  for (const Distances& other : all) least = std::min(least, difference(one, other));
  return least;
}

double from_rotation(const Pose& pose) {
  double most = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double entry = i == j ? -1.0 : 0.0;
      for (const auto& row : pose.rotation) entry += row[i] * row[j];
      most = std::max(most, std::abs(entry));
    }
  }
  const auto& R = pose.rotation;
  const double determinant = R[0][0] * (R[1][1] * R[2][2] - R[1][2] * R[2][1]) -
                             R[0][1] * (R[1][0] * R[2][2] - R[1][2] * R[2][0]) +
                             R[0][2] * (R[1][0] * R[2][1] - R[1][1] * R[2][0]);
  return std::max(most, std::abs(determinant - 1.0));
}

class ThreePoints : public testing::TestWithParam<Kind> {};
INSTANTIATE_TEST_SUITE_P(All, ThreePoints, testing::ValuesIn(kinds), [](const auto& one) { return one.param.name; });

/// Where two solutions are all but one, rounding decides whether there are any: of these nothing is asked but that they
/// are few.
TEST_P(ThreePoints, AreSeenFromAllPosesThatThereAreAndFromNoOther) {
  constexpr Long most_sensitive = 1e-9L;
  constexpr Long allowed = 64;  // times what the rounding of an equation may do
  constexpr double part_near_double = 0.003;
  const auto num_triples = static_cast<int>(support::count_for_round(support::repetitions(17000U, 1000000U)));
  Random random(seed);
  int num_near_double = 0, num_lost = 0, num_wrong = 0;
  int of_each_number[5] = {};
  for (int n = 0; n < num_triples; ++n) {
    const Triple triple = random_triple(GetParam(), random);
    const Long_triangle triangle(triple.points, triple.directions);
    const std::vector<Distances> expected = support::three_point_roots(triangle);
    Pose poses[kelvane::max_poses_of_three_points];
    const int num_poses = kelvane::poses_of_three_points(triple.points, triple.directions, poses);
    ASSERT_GE(num_poses, 0);
    ASSERT_LE(num_poses, 4);
    ++of_each_number[num_poses];
    std::vector<Distances> found;
    bool is_near_double = false;
    for (int i = 0; i < num_poses; ++i) {
      Long off = 0;
      found.push_back(distances_of(poses[i], triple, off));
      const Long sensitivity = triangle.sensitivity(found.back());
      is_near_double = is_near_double || !(sensitivity < most_sensitive);
      EXPECT_LT(from_rotation(poses[i]), tolerance::identity) << "triple " << n;
      if (!(sensitivity < most_sensitive)) continue;
      EXPECT_LT(off, allowed * sensitivity + 1e-14L) << "triple " << n;
      num_wrong += nearest(found.back(), expected) < allowed * sensitivity ? 0 : 1;
    }
    for (const Distances& root : expected) {
      const Long sensitivity = triangle.sensitivity(root);
      is_near_double = is_near_double || !(sensitivity < most_sensitive);
      if (!(sensitivity < most_sensitive)) continue;
      num_lost += nearest(root, found) < allowed * sensitivity ? 0 : 1;
    }
    num_near_double += is_near_double ? 1 : 0;
  }
  EXPECT_EQ(num_wrong, 0);
  EXPECT_LE(num_lost, GetParam().most_lost * num_triples);
  EXPECT_LT(num_near_double, part_near_double * num_triples);
#ifndef KELVANE_SANITIZED  // fewer
  for (int i = GetParam().is_seen ? 1 : 0; i < 5 && GetParam().angle > 0.1; ++i) EXPECT_GT(of_each_number[i], 0) << i;
#endif
}

}  // namespace
