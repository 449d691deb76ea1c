// SPDX-License-Identifier: BSD-3-Clause
// From pixels back through the lens, and there again.
#include <gtest/gtest.h>

#include <cmath>

#include "cameras/lens.h"
#include "support/long_run.h"
#include "support/reference_lens.h"

namespace {

using kelvane::Lens;
using kelvane::Lens_model;
using support::Random;

constexpr std::uint64_t seed = 18002;

class UnprojectOfModel : public testing::TestWithParam<Lens_model> {};

INSTANTIATE_TEST_SUITE_P(All, UnprojectOfModel, testing::ValuesIn(kelvane::lens_models()), support::name_of_model);

double distance(const double* a, const double* b, int n) {
  double most = 0.0;
  for (int k = 0; k < n; ++k) most = std::max(most, std::abs(a[k] - b[k]));
  return most;
}

TEST_P(UnprojectOfModel, GoesThereAndBack) {
  Random random(seed);
  const int num_lenses = support::repetitions(100, 10000);
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = make_lens(GetParam(), support::random_parameters(GetParam(), random));
    for (int k = 0; k < 100; ++k) {
      SCOPED_TRACE(testing::Message() << "lens " << i << ", direction " << k);
      const auto direction = support::seen_direction(lens, random, 0.98);
      double pixel[2];
      double back[3];
      double again[2];
      project(lens, direction.data(), pixel);
      if (std::hypot(pixel[0], pixel[1]) > 2e4) continue;  // no sensor is so large
      ASSERT_TRUE(unproject(lens, pixel, back)) << pixel[0] << " " << pixel[1];
      project(lens, back, again);
      ASSERT_LE(distance(again, pixel, 2), 2e-10 + 1e-14 * (std::abs(pixel[0]) + std::abs(pixel[1])));
      ASSERT_LE(distance(back, direction.data(), 3), 1e-11);
    }
  }
}

TEST_P(UnprojectOfModel, MeetsEveryPixelOrSaysThatItHasNone) {
  Random random(seed);
  const int num_lenses = support::repetitions(100, 10000);
  int num_met = 0;
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = make_lens(GetParam(), support::random_parameters(GetParam(), random));
    for (int k = 0; k < 100; ++k) {
      const double pixel[2] = {random.uniform(-500, 2000), random.uniform(-500, 2000)};
      double back[3];
      double again[2] = {0.0, 0.0};
      const bool is_met = unproject(lens, pixel, back);
      ASSERT_EQ(is_met, std::isfinite(back[0]) && std::isfinite(back[1]) && std::isfinite(back[2]));
      if (!is_met) continue;
      project(lens, back, again);
      ASSERT_LE(distance(again, pixel, 2), 2e-10) << lens.model->name << i;
      ++num_met;
    }
  }
  EXPECT_GT(num_met, 30 * num_lenses);
}

void expect_met_at(const Lens& lens, double part_of_fold) {
  const double seen[] = {0.6 * part_of_fold * lens.fold, 0.8 * part_of_fold * lens.fold, 1.0};
  double pixel[2];
  double back[3];
  project(lens, seen, pixel);
  ASSERT_TRUE(unproject(lens, pixel, back)) << part_of_fold << " of " << lens.fold;
  EXPECT_NEAR(back[0] / back[2], seen[0], 1e-7 * lens.fold);
  EXPECT_NEAR(back[1] / back[2], seen[1], 1e-7 * lens.fold);
}

/// Rounding decides on which side of the pole the end of the picture lies.
TEST(Unproject, MeetsPixelsBeforeAPole) {
  for (int i = 1; i < 100; ++i) {
    const double k6 = -0.01 * i;
    const Lens lens = make_lens(kelvane::lens_model("FULL_OPENCV"), {500, 500, 0, 0, 0.02, 0, 0, 0, 0, 0, 0, k6});
    for (const double part : {0.3, 0.8, 0.95}) expect_met_at(lens, part);
  }
}

/// There the pixels of two places differ by their rounding alone.
TEST(Unproject, MeetsWhatIsSeenJustBeforeTheFold) {
  for (int i = 1; i < 100; ++i) {
    const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {1000, 320, 240, -0.01 * i});
    expect_met_at(lens, 1.0 - 1e-8);
  }
}

/// Beyond the fold no direction is invented: the radial function has its largest value there.
TEST(Unproject, HasNothingBeyondTheFold) {
  const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {1000, 0, 0, -1.0 / 3.0});
  EXPECT_DOUBLE_EQ(lens.fold, 1.0);  // 1 + 3 k r^2 = 0
  EXPECT_NEAR(fold_in_pixels(lens), 2000.0 / 3.0, 1e-9);
  double direction[3];
  const double inside[2] = {666.0, 0.0};
  const double outside[2] = {0.0, 667.0};
  EXPECT_TRUE(unproject(lens, inside, direction));
  EXPECT_LT(direction[0] / direction[2], 1.0);
  EXPECT_FALSE(unproject(lens, outside, direction));
}

TEST(Unproject, EndsWithHostileNumbers) {
  Random random(seed);
  const std::vector<double> hostile{0.0, 1e-300, -1e-300, 1e300, -1e300, 1e-12, 1e12, -1.0, 1.0, 3.0};
  for (const Lens_model& model : kelvane::lens_models()) {
    for (int i = 0; i < 300; ++i) {
      std::vector<double> parameters = support::random_parameters(model, random);
      for (double& value : parameters) {
        if (random.uniform(0, 1) < 0.4) value = hostile[static_cast<std::size_t>(random.uniform(0, 10))];
      }
      if (model.plane == kelvane::Lens_plane::field_of_view) parameters.back() = random.uniform(0.0, 3.1415);
      if (parameters[0] == 0.0) parameters[0] = 1.0;
      if (parameters[1] == 0.0) parameters[1] = 1.0;
      const Lens lens = make_lens(model, parameters);
      const double places[4] = {hostile[static_cast<std::size_t>(i % 10)],
                                hostile[static_cast<std::size_t>(i / 10 % 10)], 1.0, std::nan("")};
      for (int k = 0; k < 3; ++k) {
        double direction[3];
        double again[2];
        const bool is_met = unproject(lens, places + k, direction);
        ASSERT_EQ(is_met, !std::isnan(direction[0]));
        if (!is_met) continue;
        project(lens, direction, again);
        double size = std::abs(places[k]) + std::abs(places[k + 1]);
        for (const auto& row : lens.to_pixel) {
          for (const double entry : row) size = std::max(size, std::abs(entry));
        }
        EXPECT_LE(distance(again, places + k, 2), 1e-6 + 1e-6 * size) << model.name;
      }
    }
  }
}

}  // namespace
