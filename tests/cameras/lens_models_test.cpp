// SPDX-License-Identifier: BSD-3-Clause
// Names, orders of parameters, and the same camera in other words.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "cameras/bad_argument.h"
#include "cameras/lens.h"
#include "support/reference_lens.h"

namespace {

using kelvane::lens_model, kelvane::lens_of_opencv, kelvane::opencv_coefficients;

std::string error_of(const std::function<void()>& action) {
  try {
    action();
  } catch (const kelvane::Bad_argument& error) {
    return std::string(error.identifier()) + ": " + error.what();
  }
  return "";
}

TEST(LensModels, HaveColmapsParametersInItsOrder) {
  const std::vector<std::pair<std::string, std::string>> expected{
      {"SIMPLE_PINHOLE", "f, cx, cy"},
      {"PINHOLE", "fx, fy, cx, cy"},
      {"SIMPLE_RADIAL", "f, cx, cy, k1"},
      {"RADIAL", "f, cx, cy, k1, k2"},
      {"OPENCV", "fx, fy, cx, cy, k1, k2, p1, p2"},
      {"FULL_OPENCV", "fx, fy, cx, cy, k1, k2, p1, p2, k3, k4, k5, k6"},
      {"OPENCV_FISHEYE", "fx, fy, cx, cy, k1, k2, k3, k4"},
      {"SIMPLE_RADIAL_FISHEYE", "f, cx, cy, k1"},
      {"RADIAL_FISHEYE", "f, cx, cy, k1, k2"},
      {"FOV", "fx, fy, cx, cy, omega"},
      {"THIN_PRISM_FISHEYE", "fx, fy, cx, cy, k1, k2, p1, p2, k3, k4, s1, s3"},
      {"BAL", "f, k1, k2"},
      {"GENERAL_PERSPECTIVE", "fx, fy, cx, cy, skew, k1, k2, p1, p2, k3, k4, k5, k6, s1, s2, s3, s4, tau_x, tau_y"},
      {"GENERAL_FISHEYE", "fx, fy, cx, cy, skew, k1, k2, k3, k4"}};
  ASSERT_EQ(kelvane::lens_models().size(), expected.size());
  for (const auto& [name, parameters] : expected) EXPECT_EQ(parameters_in_words(lens_model(name)), parameters) << name;
}

TEST(LensModels, RefuseWhatTheyDoNotKnow) {
  EXPECT_EQ(
      error_of([] { lens_model("OPENCV_FISHEY"); }),
      "unknownModel: 'OPENCV_FISHEY' is not a camera model. Did you mean 'OPENCV_FISHEYE'? There are "
      "SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL, RADIAL, OPENCV, FULL_OPENCV, OPENCV_FISHEYE, "
      "SIMPLE_RADIAL_FISHEYE, RADIAL_FISHEYE, FOV, THIN_PRISM_FISHEYE, BAL, GENERAL_PERSPECTIVE, GENERAL_FISHEYE.");
  EXPECT_EQ(error_of([] { lens_model("xyzzy"); }).find("Did you mean"), std::string::npos);
  EXPECT_EQ(error_of([] {
              make_lens(lens_model("OPENCV"), {1, 2, 3});
            }),
            "parameters: OPENCV has 8 parameters: fx, fy, cx, cy, k1, k2, p1, p2; here are 3.");
  EXPECT_EQ(error_of([] {
              make_lens(lens_model("RADIAL"), {1, 2, 3, std::nan(""), 0});
            }),
            "notFinite: Parameter 4 of RADIAL, which has f, cx, cy, k1, k2, is NaN. All of it must be finite numbers.");
  EXPECT_EQ(error_of([] {
              make_lens(lens_model("PINHOLE"), {1, 0, 3, 4});
            }),
            "intrinsics: A focal length of 0 sees everything in one place.");
  EXPECT_EQ(error_of([] {
              make_lens(lens_model("FOV"), {1, 1, 3, 4, 3.2});
            }),
            "parameters: omega of FOV is 3.2; it must be from 0 to below pi.");
}

constexpr double K[3][3] = {{700, 0, 320}, {0, 650, 240}, {0, 0, 1}};
constexpr double skewed[3][3] = {{700, 3, 320}, {0, 650, 240}, {0, 0, 1}};

TEST(LensModels, HoldOpencvsCoefficientsInTheSimplestModel) {
  const std::vector<double> all{0.1, -0.2, 1e-3, 2e-3, 0.03, 0.04, 0.05, 0.06, 1e-3, 2e-3, 3e-3, 4e-3, 0.01, 0.02};
  const std::vector<std::pair<std::size_t, std::string>> expected{{0, "PINHOLE"},
                                                                  {4, "OPENCV"},
                                                                  {5, "FULL_OPENCV"},
                                                                  {8, "FULL_OPENCV"},
                                                                  {12, "GENERAL_PERSPECTIVE"},
                                                                  {14, "GENERAL_PERSPECTIVE"}};
  for (const auto& [n, name] : expected) {
    const std::vector<double> some(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(n));
    const kelvane::Lens lens = lens_of_opencv(K, some, false);
    EXPECT_EQ(lens.model->name, name);
    EXPECT_EQ(opencv_coefficients(lens), n == 0 ? std::vector<double>(4) : some);
    const kelvane::Lens other = lens_of_opencv(skewed, some, false);
    EXPECT_EQ(other.model->name, std::string("GENERAL_PERSPECTIVE"));
    EXPECT_EQ(other.K[0][1], 3.0);
    EXPECT_EQ(opencv_coefficients(other), n == 0 ? std::vector<double>(4) : some);
  }
  EXPECT_EQ(lens_of_opencv(K, {1, 2, 3, 4}, true).model->name, std::string("OPENCV_FISHEYE"));
  EXPECT_EQ(lens_of_opencv(skewed, {1, 2, 3, 4}, true).model->name, std::string("GENERAL_FISHEYE"));
  EXPECT_EQ(opencv_coefficients(lens_of_opencv(skewed, {1, 2, 3, 4}, true)), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(
      error_of([] {
        lens_of_opencv(K, {1, 2, 3}, false);
      }),
      "distortion: OpenCV has 4, 5, 8, 12 or 14 distortion coefficients, k1, k2, p1, p2, k3, k4, k5, k6, s1, s2, s3, "
      "s4, tau_x, tau_y; here are 3.");
  EXPECT_EQ(error_of([] {
              lens_of_opencv(K, {1, 2, 3, 4, 5}, true);
            }),
            "distortion: A fisheye has 4 coefficients, k1 to k4; here are 5.");
}

TEST(LensModels, SayWhereOthersHaveNoSuchCamera) {
  const auto lens = [](const char* name) {
    support::Random random(1);
    return make_lens(lens_model(name), support::random_parameters(lens_model(name), random));
  };
  for (const char* name : {"FOV", "THIN_PRISM_FISHEYE", "BAL"}) {
    EXPECT_EQ(error_of([&] { opencv_coefficients(lens(name)); }),
              std::string("noOpencvModel: OpenCV has no camera like this ") + name + ".");
  }
  for (const char* name : {"BAL", "GENERAL_PERSPECTIVE", "GENERAL_FISHEYE"}) {
    EXPECT_EQ(error_of([&] { lens_of_colmap(lens(name)); }),
              std::string("noColmapModel: COLMAP has no camera like this ") + name + ".");
  }
  EXPECT_STREQ(lens_of_colmap(lens("RADIAL")).model->name, "RADIAL");
  const std::vector<double> some{0.1, 0.2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_STREQ(lens_of_colmap(lens_of_opencv(K, some, false)).model->name, "OPENCV");
  EXPECT_EQ(lens_of_colmap(lens_of_opencv(K, some, false)).given[5], 0.2);
}

TEST(LensModels, ArePinholesWhereNothingIsMoved) {
  EXPECT_TRUE(is_pinhole(make_lens(lens_model("PINHOLE"), {1, 2, 3, 4})));
  EXPECT_TRUE(is_pinhole(lens_of_opencv(skewed, {0, 0, 0, 0}, false)));
  EXPECT_FALSE(is_pinhole(make_lens(lens_model("RADIAL"), {1, 2, 3, 4, 0})));
  EXPECT_FALSE(is_pinhole(make_lens(lens_model("BAL"), {1, 0, 0})));
  EXPECT_FALSE(is_pinhole(make_lens(lens_model("OPENCV_FISHEYE"), {1, 2, 3, 4, 0, 0, 0, 0})));
}

TEST(IdealPixels, AreThoseOfThePinholeWithTheSameK) {
  const kelvane::Lens lens = lens_of_opencv(skewed, {0.1, 0, 0, 0}, false);
  const double direction[3] = {0.2, -0.3, 0.5};
  double pixel[2];
  ideal_pixel(lens, direction, pixel);
  EXPECT_NEAR(pixel[0], 700 * 0.4 + 3 * -0.6 + 320, 1e-12);
  EXPECT_NEAR(pixel[1], 650 * -0.6 + 240, 1e-12);
  double back[3];
  ideal_direction(lens, pixel, back);
  EXPECT_NEAR(back[0], 0.4, 1e-15);
  EXPECT_NEAR(back[1], -0.6, 1e-15);
  const double behind[3] = {0.2, -0.3, -0.5};
  ideal_pixel(lens, behind, pixel);
  EXPECT_TRUE(std::isnan(pixel[0]) && std::isnan(pixel[1]));
  const kelvane::Lens bal = make_lens(lens_model("BAL"), {100, 0, 0});
  ideal_pixel(bal, behind, pixel);
  EXPECT_NEAR(pixel[0], 40, 1e-12);
}

}  // namespace
