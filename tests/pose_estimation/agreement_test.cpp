// SPDX-License-Identifier: BSD-3-Clause
// How well matches agree with a pose, against a sum over the points, and what is given up before the end.
#include "pose_estimation/agreement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "support/estimated_scenes.h"

namespace {

using kelvane::Agreement, kelvane::Estimate_options, kelvane::Matches, kelvane::Pose;
using support::Estimated_scene, support::Random, support::Shape;

constexpr std::uint64_t seed = 19004;

/// A camera that sees as much as another where a pose has been moved a little.
Pose disturbed(Random& random, double by) {
  const std::vector<double> v = random.vector_in_cube(6, by);
  return support::pose_at({0.3 + v[0], -0.5 + v[1], 0.2 + v[2]}, {0.1 + v[3], -0.2 + v[4], -4.0 + v[5]});
}

/// With all places filled, and not.
const std::size_t sizes[] = {4, 7, 8, 9, 17, 100, 129, 1000};

/// By its pixel or angle alone: the first order is off by what the next adds.
double exact_square(const Estimated_scene& scene, const Pose& pose, std::size_t i, double max_error) {
  const std::vector<double> seen = support::seen_through(scene.camera, pose, &scene.points[3 * i]);
  double square = 0.0;
  for (std::size_t k = 0; k < seen.size(); ++k) {
    const double difference = seen[k] - scene.observations[scene.d() * i + k];
    square += difference * difference;
  }
  return square / (max_error * max_error);
}

TEST(Agreement, IsThatOfThePointsAndTheirObservations) {
  Random random(seed);
  for (const bool sees_directions : {false, true}) {
    Estimate_options options;
    options.max_error = sees_directions ? 1e-3 : 1.0;
    for (const std::size_t n : sizes) {
      const Estimated_scene scene =
          random_scene(random, support::camera_of_scene(sees_directions), Shape::volume, n, n / 2, 0.0);
      const Matches matches(scene.view(), options);
      const Agreement agreement(matches);
      const Pose pose = disturbed(random, 2e-4);
      const std::vector<double> squares = agreement.squares(matches.world().from_users(pose));
      ASSERT_EQ(squares.size(), n);
      double gain = 0.0;
      for (std::size_t i = 0; i < n; ++i) {
        const double expected = exact_square(scene, pose, matches.index(i), options.max_error);
        EXPECT_NEAR(std::min(squares[i], 1.0), std::min(expected, 1.0), 0.02);
        gain += std::max(0.0, 1.0 - squares[i]);
      }
      EXPECT_GT(gain, 0.2 * static_cast<double>(n));
      EXPECT_NEAR(agreement.gain(matches.world().from_users(pose), 0.0), gain, 1e-12 * gain);
    }
  }
}

/// Nobody but what has become improbable is given up: with the best so far as the least, all that are better must come
/// through but a few of the four standard deviations.
TEST(Agreement, IsGivenUpOnlyWhereMoreIsImprobable) {
  Random random(seed + 1);
  int num_better = 0, num_lost = 0;
  for (int round = 0; round < 3000; ++round) {
    const std::size_t n = sizes[static_cast<std::size_t>(round) % std::size(sizes)];
    const std::size_t num_wrong = n * static_cast<std::size_t>(round / 8 % 4) / 4;
    const Estimated_scene scene = random_scene(random, support::camera_of_scene(false), Shape::volume, n, num_wrong, 1);
    const Estimate_options options;
    const Matches matches(scene.view(), options);
    const Agreement agreement(matches);
    const Pose pose = matches.world().from_users(disturbed(random, random.magnitude(-5.0, -2.0)));
    const double gain = agreement.gain(pose, 0.0);
    EXPECT_EQ(agreement.gain(pose, gain), 0.0);
    for (const double part : {0.5, 0.9, 0.99}) {
      const double found = agreement.gain(pose, part * gain);
      if (gain == 0.0) continue;
      ++num_better;
      num_lost += found == gain ? 0 : 1;
      EXPECT_TRUE(found == gain || found == 0.0);
    }
  }
  EXPECT_GT(num_better, 5000);
  EXPECT_LE(num_lost, num_better / 1000);
}

}  // namespace
