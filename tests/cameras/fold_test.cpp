// SPDX-License-Identifier: BSD-3-Clause
// Where images end: at the fold of a radial lens, and nowhere behind the fold of another.
#include <gtest/gtest.h>

#include <cmath>

#include "cameras/lens.h"
#include "cameras/lens_body.h"
#include "support/reference_lens.h"

namespace {

using kelvane::Lens;
using support::Random;

constexpr std::uint64_t seed = 18005;

double determinant_at(const Lens& lens, double a, double b) {
  const Lens_pixel<1> seen(a, b, lens);
  return (seen.u_a * seen.v_b - seen.u_b * seen.v_a) / (lens.K[0][0] * lens.K[1][1]);
}

Lens without_fold(Lens lens) {
  lens.fold = 1e13;
  return lens;
}

TEST(Fold, OfARadialLensIsWhereItsRadiusTurnsBack) {
  Random random(seed);
  int num_folds = 0;
  for (int i = 0; i < 300; ++i) {
    const auto& model = kelvane::lens_model(i % 3 == 0 ? "RADIAL" : i % 3 == 1 ? "FULL_OPENCV" : "OPENCV_FISHEYE");
    std::vector<double> parameters = support::random_parameters(model, random);
    if (i % 3 == 1) parameters[6] = parameters[7] = 0.0;
    const Lens lens = make_lens(model, parameters);
    ASSERT_TRUE(lens.is_radial);
    const Lens all = without_fold(lens);
    const double most = lens.is_angular ? 3.1 : 20.0;
    for (int k = 1; k < 400; ++k) {
      const double r = most * k / 400.0;
      if (r >= lens.fold) break;
      ASSERT_GT(determinant_at(all, r * std::cos(k), r * std::sin(k)), 0.0);
    }
    if (lens.fold >= most) continue;
    ++num_folds;
    const Lens_pixel<1> just_below(lens.fold * (1 - 1e-7), 0.0, all);
    const Lens_pixel<1> just_beyond(lens.fold * (1 + 1e-7), 0.0, all);
    EXPECT_GT(just_below.u_a / lens.K[0][0], 0.0);
    const bool turns_back = just_beyond.u_a / lens.K[0][0] < 0.0;
    const bool is_pole = (just_beyond.u - lens.K[0][2]) * (just_below.u - lens.K[0][2]) < 0.0;
    EXPECT_TRUE(turns_back || is_pole) << i;
  }
  EXPECT_GT(num_folds, 50);
}

TEST(Fold, OfARationalLensIsWhereItsDenominatorVanishes) {
  const Lens lens = make_lens(kelvane::lens_model("FULL_OPENCV"), {1, 1, 0, 0, 0, 0, 0, 0, 0, -0.25, 0, 0});
  EXPECT_DOUBLE_EQ(lens.fold, 2.0);  // r / (1 - r^2 / 4) grows without bound, and is negative behind
  EXPECT_LT(determinant_at(without_fold(lens), 2.1, 0.0), 0.0);
}

TEST(Fold, LeavesNothingOfAnyLensTurnedRound) {
  Random random(seed);
  for (const auto& model : kelvane::lens_models()) {
    for (int i = 0; i < 300; ++i) {
      std::vector<double> parameters = support::random_parameters(model, random);
      for (std::size_t k = 4; k < parameters.size() && i % 2 == 1 && model.name != std::string("FOV"); ++k) {
        if (model.parameters[k] != kelvane::Lens_parameter::skew) parameters[k] *= random.magnitude(-1, 2);
      }
      const Lens lens = make_lens(model, parameters);
      if (lens.fold == 0.0) continue;  // a sensor that faces away: nothing has an image
      const Lens all = without_fold(lens);
      for (int k = 0; k < 200; ++k) {
        const double r = std::min(lens.fold, 30.0) * random.uniform(0, 1) * (1 - 1e-9);
        const double turn = random.uniform(-3.2, 3.2);
        ASSERT_GT(determinant_at(all, r * std::cos(turn), r * std::sin(turn)), 0.0) << model.name << " " << i;
      }
    }
  }
}

/// The bound is met: with tangential terms alone the determinant vanishes at the fold, in one direction.
TEST(Fold, OfTangentialTermsIsWhereTheDeterminantFirstVanishes) {
  const Lens lens = make_lens(kelvane::lens_model("OPENCV"), {1, 1, 0, 0, 0, 0, 0.3, 0.4});
  EXPECT_NEAR(lens.fold, 1.0 / 3.0, 1e-12);  // 6 |p| r = 1
  double least = 1.0;
  for (int k = 0; k < 6283; ++k) {
    least = std::min(
        least, determinant_at(without_fold(lens), lens.fold * std::cos(1e-3 * k), lens.fold * std::sin(1e-3 * k)));
  }
  EXPECT_NEAR(least, 0.0, 1e-5);
}

TEST(Fold, OfATiltedSensorIsWhereItsDepthVanishes) {
  const Lens lens = make_lens(kelvane::lens_model("GENERAL_PERSPECTIVE"),
                              {1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0.0, 0.2});
  EXPECT_NEAR(lens.fold, 1.0 / std::tan(0.2), 1e-9);
}

TEST(Fold, IsInsideAPictureThatHasACornerBeyond) {
  const Lens lens = make_lens(kelvane::lens_model("SIMPLE_RADIAL"), {300, 100, 75, -1.0 / 3.0});
  EXPECT_NEAR(fold_in_pixels(lens), 200.0, 1e-9);
  EXPECT_FALSE(folds_inside(lens, 285.0, 150.0));  // 185 to the right of the middle and 75 off it
  EXPECT_TRUE(folds_inside(lens, 286.0, 150.0));
  EXPECT_TRUE(folds_inside(lens, 150.0, 286.0));
}

TEST(Fold, OfAFisheyeIsNotBeyondPi) {
  const double pi = std::acos(-1.0);
  EXPECT_DOUBLE_EQ(largest_angle(make_lens(kelvane::lens_model("OPENCV_FISHEYE"), {1, 1, 0, 0, 0, 0, 0, 0})), pi);
  EXPECT_DOUBLE_EQ(largest_angle(make_lens(kelvane::lens_model("RADIAL_FISHEYE"), {1, 0, 0, 0.1, 0})), pi);
  EXPECT_NEAR(largest_angle(make_lens(kelvane::lens_model("FOV"), {1, 1, 0, 0, 0.9})), pi, 1e-9);
  EXPECT_NEAR(largest_angle(make_lens(kelvane::lens_model("SIMPLE_RADIAL_FISHEYE"), {1, 0, 0, -1.0 / 3.0})), 1.0,
              1e-12);
  EXPECT_NEAR(largest_angle(make_lens(kelvane::lens_model("SIMPLE_PINHOLE"), {1, 0, 0})), pi / 2, 1e-9);
}

}  // namespace
