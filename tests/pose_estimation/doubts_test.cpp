// SPDX-License-Identifier: BSD-3-Clause
// Observations that prove no pose, or more than one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "pose_estimation/estimate.h"
#include "support/estimated_scenes.h"

namespace {

using kelvane::Estimate_options, kelvane::Estimate_result, kelvane::Refine_exit;
using support::Estimated_scene, support::is_right, support::Random, support::Shape;

constexpr std::uint64_t seed = 19010;

/// Points spread evenly over a cube, and observations over a picture, that have nothing to do with each other.
Estimated_scene wrong_scene(Random& random, std::size_t n) {
  Estimated_scene scene;
  scene.camera = support::camera_of_scene(false);
  for (std::size_t i = 0; i < n; ++i) {
    scene.add(random.vector_in_cube(3, 1.0), {random.uniform(0.0, 640.0), random.uniform(0.0, 480.0)});
  }
  return scene;
}

TEST(Doubts, WrongObservationsAreNoConsensus) {
  Random random(seed);
  int num_positive = 0;
  for (int i = 0; i < 400; ++i) {
    const std::size_t n = 4 + static_cast<std::size_t>(i) % 9;
    const Estimate_result result = estimate(wrong_scene(random, n).view());
    num_positive += static_cast<int>(result.exit) > 0 ? 1 : 0;
    if (result.exit != Refine_exit::no_consensus) continue;
    EXPECT_EQ(result.message, "No consensus: " + std::to_string(result.num_inliers) + " of " + std::to_string(n) +
                                  " observations agree with the best pose, which may be chance.");
    EXPECT_GT(result.log10_chance, -3.0);
  }
  EXPECT_LE(num_positive, 2);  // one in 1,000 is expected
}

/// A circle of that radius around any pixel holds the whole picture, and what is in it is no news.
TEST(Doubts, AnErrorAsLargeAsThePictureProvesNothing) {
  Random random(seed);
  int num_positive = 0;
  for (const double max_error : {150.0, 1e3, 1e6, 1e100}) {
    Estimate_options options;
    options.max_error = max_error;
    options.max_num_trials = 300;
    for (int i = 0; i < 10; ++i) {
      num_positive += static_cast<int>(estimate(wrong_scene(random, 50).view(), options).exit) > 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(num_positive, 0);
  for (const double max_error : {0.8, 3.2, 2.0 * support::pi, 1e5}) {
    Estimate_options options;
    options.max_error = max_error;
    options.max_num_trials = 300;
    for (int i = 0; i < 10; ++i) {
      Estimated_scene scene;
      for (int k = 0; k < 50; ++k) scene.add(random.vector_in_cube(3, 1.0), random.direction(3));
      num_positive += static_cast<int>(estimate(scene.view(), options).exit) > 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(num_positive, 0);
}

/// A place in the picture that many points were taken for: a camera far away sees them all there.
TEST(Doubts, WrongObservationsThatCrowdInOnePlaceAreNoConsensus) {
  Random random(seed);
  int num_likely = 0;
  for (const std::size_t num_there : {15U, 30U, 60U}) {
    for (const double width : {0.0, 1.0, 10.0}) {
      for (int i = 0; i < 4; ++i) {
        Estimated_scene scene = wrong_scene(random, 100);
        for (std::size_t k = 0; k < num_there; ++k) {
          scene.observations[2 * k] = 320.0 + width * support::normal(random);
          scene.observations[2 * k + 1] = 200.0 + width * support::normal(random);
        }
        Estimate_options options;
        options.max_num_trials = 3000;
        const Estimate_result result = estimate(scene.view(), options);
        EXPECT_LE(static_cast<int>(result.exit), 0) << num_there << " within " << width;
        num_likely += result.log10_chance > -3.0 ? 1 : 0;
      }
    }
  }
  EXPECT_GE(num_likely, 33);  // of 36
}

/// The pose of the scene, turned about a line.
kelvane::Pose turned_about(const std::vector<double>& point, const std::vector<double>& axis, double angle) {
  const kelvane::Pose turn = support::pose_at({angle * axis[0], angle * axis[1], angle * axis[2]}, {0, 0, 0});
  kelvane::Pose turned;
  for (std::size_t i = 0; i < 3; ++i) {
    turned.centre[i] = point[i];
    for (std::size_t j = 0; j < 3; ++j) {
      turned.centre[i] += turn.rotation[i][j] * (support::pose_of_scene.centre[j] - point[j]);
      turned.rotation[i][j] = 0.0;
      for (int k = 0; k < 3; ++k) turned.rotation[i][j] += turn.rotation[i][k] * support::pose_of_scene.rotation[k][j];
    }
  }
  return turned;
}

/// All on a line but one, which is seen from where a turn about the line has brought the camera: who says that this one
/// is right and no other would be?
TEST(Doubts, APointBesideALineDecidesNothing) {
  Random random(seed);
  int num_told = 0;
  for (int i = 0; i < 30; ++i) {
    Estimated_scene scene;
    scene.camera = support::camera_of_scene(false);
    const std::vector<double> along = random.direction(3), middle = random.vector_in_cube(3, 0.3);
    const kelvane::Pose turned = turned_about(middle, along, random.uniform(0.05, 0.4));
    const std::size_t n = i % 3 == 0 ? 10 : i % 3 == 1 ? 20 : 60;
    while (scene.size() < n) {
      const double step = random.uniform(-1.0, 1.0);
      std::vector<double> X = random.vector_in_cube(3, 1.0);
      for (std::size_t k = 0; k < 3 && scene.size() > 0; ++k) X[k] = middle[k] + step * along[k];
      std::vector<double> pixel = support::seen(scene.camera, turned, X.data());
      for (double& coordinate : pixel) coordinate += 0.5 * support::normal(random);
      scene.add(X, pixel);
    }
    const Estimate_result result = estimate(scene.view());
    EXPECT_LE(static_cast<int>(result.exit), 0) << "scene " << i;
    num_told +=
        result.message ==
                "Ambiguous: the observation of point 0 alone decides a direction of the pose, and no other says "
                "whether it is right."
            ? 1
            : 0;
  }
  EXPECT_GT(num_told, 10);
}

/// Between the optical axes, radians.
double off_axis(const kelvane::Pose& a, const kelvane::Pose& b) {
  double cosine = 0.0;
  for (int i = 0; i < 3; ++i) cosine += a.rotation[i][2] * b.rotation[i][2];
  return std::acos(std::min(1.0, cosine));
}

TEST(Doubts, TheTwoPosesOfAFlatTargetAreBothThere) {
  Random random(seed);
  int num_ambiguous = 0;
  for (int i = 0; i < 20; ++i) {
    Estimated_scene scene;
    scene.camera = kelvane::pixel_camera(800, 320, 240);
    const double about = random.uniform(0.0, 6.28), tilt = 0.4;
    kelvane::Pose truth = support::pose_at({tilt * std::cos(about), tilt * std::sin(about), 0.0}, {0, 0, 0});
    for (int k = 0; k < 3; ++k) truth.centre[k] = -30.0 * truth.rotation[k][2];
    for (std::size_t k = 0; k < 40; ++k) {
      const auto X = random_point(random, Shape::flat, false);
      auto seen = support::seen(scene.camera, truth, X.data());
      if (k >= 30) seen = {random.uniform(0.0, 640.0), random.uniform(0.0, 480.0)};
      scene.add(X, {seen[0] + 0.5 * support::normal(random), seen[1] + 0.5 * support::normal(random)});
    }
    const Estimate_result result = estimate(scene.view());
    ASSERT_TRUE(result.alternative.has_value()) << i << ": " << result.message;
    num_ambiguous += result.exit == Refine_exit::ambiguous ? 1 : 0;
    // Tilted by 0.4 one way or the other.
    const double first = off_axis(result.pose, truth), second = off_axis(result.alternative->pose, truth);
    EXPECT_LT(std::min(first, second), 0.2) << i;
    EXPECT_GT(std::max(first, second), 0.4) << i;
  }
  EXPECT_GT(num_ambiguous, 10);
}

/// Half of a scene is seen from one pose, as many other points from another. A search that ends with the first of them
/// in all its blocks does not know the second.
TEST(Doubts, TwoPosesThatAsManyAgreeWithAreAmbiguous) {
  Random random(seed);
  const kelvane::Pose other = support::pose_at({-0.4, 0.6, 0.1}, {1.5, 0.3, -4.2});
  int num_told = 0;
  for (int i = 0; i < 20; ++i) {
    auto scene = random_scene(random, support::camera_of_scene(false), Shape::volume, 20, 0, 1.0);
    while (scene.size() < 40) {
      const auto X = random_point(random, Shape::volume, false);
      auto seen = support::seen(scene.camera, other, X.data());
      scene.add(X, {seen[0] + support::normal(random), seen[1] + support::normal(random)});
    }
    const Estimate_result result = estimate(scene.view());
    EXPECT_EQ(result.exit == Refine_exit::ambiguous, result.alternative.has_value()) << i << ": " << result.message;
    num_told += result.message == "Ambiguous: " + std::to_string(result.num_inliers) +
                                      " observations agree with the pose, and others that are as likely right with "
                                      "another."
                    ? 1
                    : 0;
  }
  EXPECT_GE(num_told, 14);
}

/// Points next to a line, or in a few pixels of the picture, with wrong ones elsewhere: rather no pose than a wrong
/// one.
TEST(Doubts, PointsThatHardlyFixAPoseMakeNoneThatIsWrong) {
  Random random(seed);
  int num_wrong = 0, num_good = 0;
  for (int i = 0; i < 120; ++i) {
    const bool is_line = i % 2 == 0;
    Estimated_scene scene = wrong_scene(random, is_line ? 2 : 30);
    const std::vector<double> along = random.direction(3), middle = random.vector_in_cube(3, 0.3);
    for (int k = 0; k < 30; ++k) {
      std::vector<double> X = random.vector_in_cube(3, is_line ? 0.005 : 0.03);
      const double step = is_line ? random.uniform(-1.0, 1.0) : 0.0;
      for (std::size_t m = 0; m < 3; ++m) X[m] += middle[m] + step * along[m];
      std::vector<double> pixel = support::seen(scene.camera, support::pose_of_scene, X.data());
      for (double& coordinate : pixel) coordinate += support::normal(random);
      scene.add(X, pixel);
    }
    const Estimate_result result = estimate(scene.view());
    num_wrong += static_cast<int>(result.exit) > 0 && !is_right(result, support::pose_of_scene, 1.0) ? 1 : 0;
    num_good += static_cast<int>(result.exit) > 0 ? 1 : 0;
  }
  EXPECT_LE(num_wrong, 3);
  EXPECT_LT(num_good, 20);
}

}  // namespace
