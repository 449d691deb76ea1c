// SPDX-License-Identifier: BSD-3-Clause
// What an estimate says where it has no pose, or doubts the one it has, and of arguments that cannot be used.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "pose_estimation/estimate.h"
#include "support/estimated_scenes.h"
#include "support/matchers.h"

namespace {

using kelvane::Estimate_options, kelvane::Estimate_result, kelvane::Refine_exit;
using support::Estimated_scene, support::is_right, support::Random, support::Shape;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t seed = 19008;

Estimated_scene good_scene(std::size_t n = 30, std::size_t num_wrong = 10, double noise = 1.0) {
  Random random(seed);
  return random_scene(random, support::camera_of_scene(false), Shape::volume, n, num_wrong, noise);
}

void expect_no_pose(const Estimate_result& result, Refine_exit exit, const std::string& message) {
  EXPECT_EQ(result.exit, exit);
  EXPECT_EQ(result.message, message);
  EXPECT_TRUE(std::isnan(result.pose.rotation[1][1]) && std::isnan(result.pose.centre[2]));
  EXPECT_EQ(result.num_inliers, 0U);
  EXPECT_EQ(result.num_left_out, result.is_inlier.size());
}

TEST(Exits, FewerThanFourPointsAreTooFew) {
  const char* const rest[] = {"0 have an observation.", "1 has an observation.", "2 have an observation.",
                              "3 have an observation."};
  for (std::size_t n = 0; n < 4; ++n) {
    Estimated_scene scene = good_scene(n, 0);
    for (int k = 0; k < 2; ++k) {  // as few, and as few that were seen
      expect_no_pose(
          estimate(scene.view()), Refine_exit::undetermined,
          std::string("Not estimated: four points are the least, three for a pose and one that agrees; ") + rest[n]);
      scene.add({0.5, 0.2, 0.1}, {nan, 3.0});
      scene.add({0.5, -0.2, 0.1}, {3.0, nan});
    }
  }
}

TEST(Exits, PointsInOnePlaceAndOnALineDetermineNothing) {
  for (const double scale : {1e-100, 1.0, 5e6}) {
    Estimated_scene scene = good_scene();
    for (std::size_t i = 0; i < scene.points.size(); ++i) scene.points[i] = scale * static_cast<double>(i % 3 + 1);
    expect_no_pose(estimate(scene.view()), Refine_exit::undetermined, "Not estimated: all points lie in one place.");
    for (std::size_t i = 0; i < scene.points.size(); ++i) scene.points[i] *= static_cast<double>(i / 3);
    expect_no_pose(estimate(scene.view()), Refine_exit::undetermined,
                   "Not estimated: all points lie on a line, and a turn about it changes nothing.");
  }
}

TEST(Exits, WhatWasNotSeenIsLeftOut) {
  Estimated_scene scene = good_scene();
  scene.observations[0] = nan;
  scene.observations[13] = nan;
  const Estimate_result result = estimate(scene.view());
  EXPECT_TRUE(is_right(result, support::pose_of_scene, 1.0)) << result.message;
  for (const std::size_t i : {0U, 6U}) {
    EXPECT_EQ(result.is_inlier[i], 0);
    EXPECT_TRUE(std::isnan(result.residuals[2 * i]) || std::isnan(result.residuals[2 * i + 1]));
  }
}

/// At their own pixels, mirrored through the centre.
TEST(Exits, PointsBehindTheCameraAgreeWithNoPixel) {
  Estimated_scene scene = good_scene(30, 0, 0.5);
  for (std::size_t i = 0; i < 45; i += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      scene.points[i + k] = 2.0 * support::pose_of_scene.centre[k] - scene.points[i + k];
    }
  }
  const Estimate_result result = estimate(scene.view());
  EXPECT_TRUE(is_right(result, support::pose_of_scene, 1.0)) << result.message;
  for (std::size_t i = 0; i < 15; ++i) EXPECT_EQ(result.is_inlier[i], 0) << i;
  EXPECT_EQ(result.num_inliers, 15U);
}

TEST(Exits, PixelsWithoutARayOfTheLensAreLeftOut) {
  Random random(seed);
  const auto lens =
      make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1.0 / 3.0});  // folds at 400 pixels
  auto scene = random_scene(random, lens_camera(lens), Shape::volume, 30, 0, 0.5);
  for (int k = 0; k < 10; ++k) scene.add(random.vector_in_cube(3, 1.0), {900.0 + k, 240.0});
  const Estimate_result result = estimate(scene.view());
  EXPECT_TRUE(is_right(result, support::pose_of_scene, 1.0)) << result.message;
  EXPECT_GE(result.num_left_out, 10U);
  for (std::size_t i = 30; i < 40; ++i) EXPECT_EQ(result.is_inlier[i], 0) << i;
  scene.points.erase(scene.points.begin(), scene.points.begin() + 81);
  scene.observations.erase(scene.observations.begin(), scene.observations.begin() + 54);
  EXPECT_EQ(estimate(scene.view()).exit, Refine_exit::undetermined);  // three rays are left
}

TEST(Exits, TellsWhichArgumentCannotBeUsed) {
  const auto told_of = [](const std::function<void(Estimated_scene&, Estimate_options&)>& change) {
    Estimated_scene scene = good_scene();
    Estimate_options options;
    change(scene, options);
    return support::caught_by([&] { estimate(scene.view(), options); }).text;
  };
  EXPECT_EQ(told_of([](auto&, auto&) {}), "nothing thrown");
  EXPECT_EQ(told_of([](auto& s, auto&) { s.points.pop_back(); }), "points: 89 numbers are no multiple of 3.");
  EXPECT_EQ(told_of([](auto& s, auto&) { s.observations.push_back(1.0); }),
            "observations must be 60 numbers, 2 for each of the 30 points; there are 61.");
  EXPECT_EQ(told_of([](auto& s, auto&) { s.points[7] = nan; }), "points[7] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of([](auto& s, auto&) { s.observations[9] = infinity; }),
            "observations[9] is Inf. NaN is for what was not seen.");
  EXPECT_EQ(told_of([](auto& s, auto&) { s.camera.fx = 0.0; }), "A focal length of 0 sees everything in one place.");
  for (const double error : {-1.0, nan, infinity}) {
    EXPECT_EQ(told_of([&](auto&, auto& o) { o.max_error = error; }),
              "options.max_error must be a finite number above 0.");
  }
  for (const double confidence : {-0.5, 0.0, 1.0, nan}) {
    EXPECT_EQ(told_of([&](auto&, auto& o) { o.confidence = confidence; }),
              "options.confidence must be a number between 0 and 1.");
  }
  EXPECT_EQ(told_of([](auto&, auto& o) { o.max_num_trials = 0; }), "options.max_num_trials must be 1 or more.");
}

}  // namespace
