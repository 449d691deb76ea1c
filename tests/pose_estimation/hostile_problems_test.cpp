// SPDX-License-Identifier: BSD-3-Clause
// Problems that were spoiled: no crash, and no pose that is called good and is none.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "pose_estimation/estimate.h"
#include "support/estimated_scenes.h"
#include "support/long_round.h"
#include "support/long_run.h"

namespace {

using kelvane::Camera_model, kelvane::Estimate_options, kelvane::Estimate_result;
using support::Estimated_scene, support::Random, support::Shape;

constexpr std::uint64_t seed = 19009;

double hostile(Random& random, double old) {
  const double values[] = {0.0,
                           -0.0,
                           old,
                           -old,
                           old * random.magnitude(-3.0, 3.0),
                           1e-300,
                           1e300,
                           1e150,
                           -1e150,
                           std::numeric_limits<double>::denorm_min(),
                           1e9,
                           -1e9,
                           old + random.magnitude(-9.0, 3.0)};
  return values[static_cast<std::size_t>(random.uniform(0.0, 13.0))];
}

std::size_t any_below(Random& random, std::size_t n) {
  return static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(n)));
}

Camera_model any_camera(Random& random) {
  switch (any_below(random, 4)) {
    case 0:
      return kelvane::direction_camera();
    case 1:
      return lens_camera(make_lens(kelvane::lens_model("OPENCV_FISHEYE"), {400, 400, 320, 240, 0.01, -2e-3, 0, 0}));
    case 2:
      return lens_camera(make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {600, 320, 240, -1.0 / 3.0}));
    default:
      return support::camera_of_scene(false);
  }
}

/// A few numbers of some kind exchanged, or whole points made equal, flat or in a line.
void spoil(Random& random, Estimated_scene& scene, Estimate_options& options) {
  const std::size_t n = scene.size();
  for (std::size_t k = any_below(random, 6); k > 0; --k) {
    double& number = scene.points[any_below(random, 3 * n)];
    number = hostile(random, number);
  }
  for (std::size_t k = any_below(random, 6); k > 0; --k) {
    double& number = scene.observations[any_below(random, scene.d() * n)];
    number = any_below(random, 3) == 0 ? std::numeric_limits<double>::quiet_NaN() : hostile(random, number);
  }
  const double scale = any_below(random, 3) == 0 ? random.magnitude(-200.0, 200.0) : 1.0;
  const std::size_t flat = any_below(random, 8), num_equal = any_below(random, 4) == 0 ? any_below(random, n) : 0;
  for (std::size_t i = 0; i < 3 * n; ++i) {
    scene.points[i] *= scale * (i % 3 == flat ? 0.0 : i % 3 + 4 == flat ? 1e-9 : 1.0);
    if (i < 3 * num_equal) scene.points[i] = scene.points[i % 3];
  }
  if (any_below(random, 3) == 0) options.max_error = random.magnitude(-12.0, 12.0);
  if (any_below(random, 5) == 0) options.max_error = random.magnitude(-300.0, 300.0);
  options.max_num_trials = 300;
  options.num_threads = 1;
  options.seed = any_below(random, 1000);
}

void expect_sound(const Estimate_result& result, const Estimated_scene& scene) {
  EXPECT_FALSE(result.message.empty());
  EXPECT_EQ(result.residuals.size(), scene.observations.size());
  ASSERT_EQ(result.is_inlier.size(), scene.size());
  EXPECT_FALSE(std::isnan(result.log10_chance));
  if (static_cast<int>(result.exit) <= 0) return;
  const auto& R = result.pose.rotation;
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(std::isfinite(result.pose.centre[i]));
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(R[0][i] * R[0][j] + R[1][i] * R[1][j] + R[2][i] * R[2][j], i == j ? 1.0 : 0.0, 1e-9);
    }
  }
  EXPECT_GE(result.num_inliers, 4U);
  for (std::size_t k = 0; k < scene.size(); ++k) {
    EXPECT_TRUE(result.is_inlier[k] == 0 || std::isfinite(result.residuals[scene.d() * k])) << k;
  }
}

TEST(HostileEstimates, AreSoundOrTold) {
  const auto num_problems = support::count_for_round(support::repetitions(3000U, 300000U));
  int num_good = 0, num_told = 0;
  for (std::uint64_t number = 0; number < num_problems; ++number) {
    SCOPED_TRACE("problem " + std::to_string(number));
    Random random(seed + number);
    const std::size_t n = 3 + any_below(random, 25);
    auto scene = random_scene(random, any_camera(random), static_cast<Shape>(any_below(random, 3)), n,
                              any_below(random, n / 2 + 1), random.magnitude(-6.0, 0.5));
    Estimate_options options;
    spoil(random, scene, options);
    try {
      const Estimate_result result = estimate(scene.view(), options);
      expect_sound(result, scene);
      num_good += static_cast<int>(result.exit) > 0 ? 1 : 0;
    } catch (const std::invalid_argument& error) {
      ++num_told;
      EXPECT_NE(std::string(error.what()), "");
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
  }
  EXPECT_GT(num_good, static_cast<int>(num_problems / 20));
}

}  // namespace
