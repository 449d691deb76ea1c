// SPDX-License-Identifier: BSD-3-Clause
// Triples of points that fix no pose, or hardly one, or are large or small.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "pose_estimation/three_points.h"
#include "support/refined_problems.h"
#include "support/tolerance.h"

namespace {

using kelvane::Pose;
using support::Random;

constexpr std::uint64_t seed = 19002;

struct Poses {
  Pose all[kelvane::max_poses_of_three_points];
  int number;

  Poses(const double (&points)[3][3], const double (&directions)[3][3])
      : all{}, number(poses_of_three_points(points, directions, all)) {}
};

/// All numbers finite, and the rotation one.
void expect_poses(const Poses& poses) {
  ASSERT_GE(poses.number, 0);
  ASSERT_LE(poses.number, 4);
  for (int n = 0; n < poses.number; ++n) {
    const auto& R = poses.all[n].rotation;
    for (const double coordinate : poses.all[n].centre) EXPECT_TRUE(std::isfinite(coordinate));
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(R[0][i] * R[0][j] + R[1][i] * R[1][j] + R[2][i] * R[2][j], i == j ? 1.0 : 0.0, tolerance::identity);
      }
    }
  }
}

struct Triple {
  double points[3][3], directions[3][3];

  void see_from(const Pose& pose) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::vector<double> d = support::seen(kelvane::direction_camera(), pose, points[k]);
      std::copy_n(d.begin(), 3, directions[k]);
    }
  }
};

Triple good_triple() {
  Triple triple{{{0.3, -0.4, 0.2}, {-0.5, 0.1, 0.6}, {0.2, 0.7, -0.3}}, {}};
  triple.see_from(support::pose_of_scene);
  return triple;
}

/// Of the centre from that of the scene, in the pose that is nearest.
double off_centre(const Poses& poses, double scale, double offset) {
  double least = std::numeric_limits<double>::infinity();
  for (int n = 0; n < poses.number; ++n) {
    double off = 0.0;
    for (int i = 0; i < 3; ++i) {
      off = std::max(off, std::abs((poses.all[n].centre[i] - offset) / scale - support::pose_of_scene.centre[i]));
    }
    least = std::min(least, off);
  }
  return least;
}

TEST(ThinTriples, PointsOnALineHaveNone) {
  Random random(seed);
  for (int n = 0; n < 1000; ++n) {
    const std::vector<double> a = random.vector_in_cube(3, 1.0), along = random.direction(3);
    const double steps[] = {0.0, random.uniform(0.01, 2.0), random.uniform(-2.0, -0.01)};
    Triple triple{};
    for (int k = 0; k < 3; ++k) {
      for (std::size_t i = 0; i < 3; ++i) triple.points[k][i] = a[i] + steps[k] * along[i];
    }
    triple.see_from(support::pose_of_scene);
    EXPECT_EQ(Poses(triple.points, triple.directions).number, 0) << n;
  }
}

TEST(ThinTriples, EqualPointsOrDirectionsHaveNone) {
  for (int k = 0; k < 3; ++k) {
    const int next = (k + 1) % 3;
    Triple triple = good_triple();
    std::copy_n(triple.points[k], 3, triple.points[next]);
    EXPECT_EQ(Poses(triple.points, triple.directions).number, 0);
    triple.see_from(support::pose_of_scene);
    EXPECT_EQ(Poses(triple.points, triple.directions).number, 0);
    triple = good_triple();
    std::copy_n(triple.directions[k], 3, triple.directions[next]);
    expect_poses(Poses(triple.points, triple.directions));
  }
  Triple all = good_triple();
  for (int k = 1; k < 3; ++k) std::copy_n(all.directions[0], 3, all.directions[k]);
  EXPECT_EQ(Poses(all.points, all.directions).number, 0);
  all = good_triple();
  for (int k = 1; k < 3; ++k) std::copy_n(all.points[0], 3, all.points[k]);
  EXPECT_EQ(Poses(all.points, all.directions).number, 0);
}

/// From a point between two others, which are then in opposite directions, any triangle can be seen.
TEST(ThinTriples, OppositeDirectionsHaveTheirPose) {
  Triple triple{{{1.0, 0.0, 0.0}, {-2.0, 0.0, 0.0}, {0.3, 1.5, 0.2}}, {}};
  const Pose truth = support::pose_at({0.3, -0.5, 0.2}, {0.1, 0.0, 0.0});
  triple.see_from(truth);
  const Poses poses(triple.points, triple.directions);
  expect_poses(poses);
  double least = 1.0;
  for (int n = 0; n < poses.number; ++n) least = std::min(least, std::abs(poses.all[n].centre[0] - 0.1));
  EXPECT_LT(least, 1e-6);  // a double solution: half of the digits
}

/// The thinner the triangle, the less is known of the turn about it; a rotation it is all the same.
TEST(ThinTriples, HaveRotationsHoweverThinTheyAre) {
  Random random(seed);
  int num_poses = 0;
  for (int n = 0; n < 20000; ++n) {
    const std::vector<double> a = random.vector_in_cube(3, 1.0), b = random.vector_in_cube(3, 1.0);
    const std::vector<double> off = random.direction(3);
    const double height = random.magnitude(-10.0, -2.0), step = random.uniform(-1.0, 2.0);
    const double error = n % 2 == 0 ? 0.0 : random.magnitude(-12.0, -3.0);
    Triple triple{};
    for (std::size_t i = 0; i < 3; ++i) {
      triple.points[0][i] = a[i];
      triple.points[1][i] = b[i];
      triple.points[2][i] = a[i] + step * (b[i] - a[i]) + height * off[i];
    }
    triple.see_from(support::pose_of_scene);
    triple.directions[2][0] += error;
    const double length = std::hypot(triple.directions[2][0], triple.directions[2][1], triple.directions[2][2]);
    for (double& coordinate : triple.directions[2]) coordinate /= length;
    const Poses poses(triple.points, triple.directions);
    expect_poses(poses);
    if (HasFailure()) FAIL() << "triple " << n << " of height " << height;
    num_poses += poses.number;
  }
  EXPECT_GT(num_poses, 10000);
}

TEST(ThinTriples, AnyScaleHasThePose) {
  for (double exponent = -150.0; exponent <= 150.0; exponent += 12.5) {
    const double scale = std::pow(10.0, exponent);
    SCOPED_TRACE(testing::Message() << scale);
    Triple triple = good_triple();
    for (auto& point : triple.points) {
      for (double& coordinate : point) coordinate *= scale;
    }
    const Poses poses(triple.points, triple.directions);
    expect_poses(poses);
    EXPECT_LT(off_centre(poses, scale, 0.0), 1e-12);
  }
}

TEST(ThinTriples, FarFromTheOriginTheDigitsOfThePointsAreLeft) {
  for (const double offset : {1e3, 5e6, 1e9}) {
    Triple triple = good_triple();
    for (auto& point : triple.points) {
      for (double& coordinate : point) coordinate += offset;
    }
    const Poses poses(triple.points, triple.directions);
    expect_poses(poses);
    EXPECT_LT(off_centre(poses, 1.0, offset), 100.0 * offset * 0x1p-52);
  }
}

TEST(ThinTriples, NumbersThatAreNoneGiveNoPose) {
  constexpr double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                            -std::numeric_limits<double>::infinity()};
  for (int k = 0; k < 9; ++k) {
    for (const double value : bad) {
      Triple triple = good_triple();
      triple.points[k / 3][k % 3] = value;
      EXPECT_EQ(Poses(triple.points, triple.directions).number, 0) << k;
      triple = good_triple();
      triple.directions[k / 3][k % 3] = value;
      EXPECT_EQ(Poses(triple.points, triple.directions).number, 0) << k;
    }
  }
}

}  // namespace
