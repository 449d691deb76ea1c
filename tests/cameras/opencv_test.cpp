// SPDX-License-Identifier: BSD-3-Clause
// The same pixels as OpenCV, and the same rays where its iterations converge.
#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/calib3d.hpp>

#include "cameras/lens.h"
#include "support/reference_lens.h"

namespace {

using kelvane::Lens;
using support::Random;

constexpr std::uint64_t seed = 18006;
constexpr int num_lenses = 200;
constexpr int num_points = 100;
constexpr double near_enough = 1e-9;  // pixels

cv::Mat matrix_of(const Lens& lens) { return cv::Mat(3, 3, CV_64F, const_cast<double*>(&lens.K[0][0])); }

/// Coefficients of as many numbers as OpenCV takes.
std::vector<double> random_coefficients(std::size_t n, Random& random) {
  const std::vector<double> g = support::random_parameters(kelvane::lens_model("GENERAL_PERSPECTIVE"), random);
  return {g.begin() + 5, g.begin() + 5 + static_cast<std::ptrdiff_t>(n)};
}

/// Skew is none of OpenCV's for a perspective.
Lens random_perspective(std::size_t n, Random& random) {
  const double K[3][3] = {{random.uniform(300, 2000), 0, random.uniform(200, 1000)},
                          {0, random.uniform(300, 2000), random.uniform(200, 1000)},
                          {0, 0, 1}};
  return kelvane::lens_of_opencv(K, random_coefficients(n, random), false);
}

std::vector<cv::Point3d> seen_points(const Lens& lens, Random& random) {
  std::vector<cv::Point3d> points;
  while (points.size() < num_points) {
    const auto p = support::seen_direction(lens, random, 0.95);
    const double distance = random.magnitude(-1, 2);
    if (p[2] > 0.01) points.emplace_back(distance * p[0], distance * p[1], distance * p[2]);
  }
  return points;
}

void expect_same_pixels(const Lens& lens, const std::vector<cv::Point3d>& points,
                        const std::vector<cv::Point2d>& expected) {
  for (std::size_t k = 0; k < points.size(); ++k) {
    double pixel[2];
    project(lens, &points[k].x, pixel);
    const double scale = std::max(1.0, 1e-3 * std::max(std::abs(pixel[0]), std::abs(pixel[1])));
    ASSERT_NEAR(pixel[0], expected[k].x, near_enough * scale);
    ASSERT_NEAR(pixel[1], expected[k].y, near_enough * scale);
  }
}

TEST(Opencv, ProjectsPerspectivePointsToTheSamePixels) {
  Random random(seed);
  const cv::Mat zero = cv::Mat::zeros(3, 1, CV_64F);
  for (const std::size_t n : {4U, 5U, 8U, 12U, 14U}) {
    for (int i = 0; i < num_lenses; ++i) {
      const Lens lens = random_perspective(n, random);
      const std::vector<cv::Point3d> points = seen_points(lens, random);
      std::vector<cv::Point2d> pixels;
      cv::projectPoints(points, zero, zero, matrix_of(lens), opencv_coefficients(lens), pixels);
      SCOPED_TRACE(testing::Message() << n << " coefficients, lens " << i);
      expect_same_pixels(lens, points, pixels);
    }
  }
}

TEST(Opencv, ProjectsFisheyePointsToTheSamePixels) {
  Random random(seed);
  const cv::Mat zero = cv::Mat::zeros(3, 1, CV_64F);
  const auto& model = kelvane::lens_model("GENERAL_FISHEYE");
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = make_lens(model, support::random_parameters(model, random));
    const std::vector<cv::Point3d> points = seen_points(lens, random);
    std::vector<cv::Point2d> pixels;
    cv::fisheye::projectPoints(points, pixels, zero, zero, matrix_of(lens), opencv_coefficients(lens),
                               lens.K[0][1] / lens.K[0][0]);
    SCOPED_TRACE(i);
    expect_same_pixels(lens, points, pixels);
  }
}

TEST(Opencv, UndistortsToTheSameRaysWhereItConverges) {
  Random random(seed);
  const cv::TermCriteria tight(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 500, 1e-14);
  int num_converged = 0;
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = random_perspective(i % 2 == 0 ? 5 : 8, random);
    for (const cv::Point3d& point : seen_points(lens, random)) {
      std::vector<cv::Point2d> pixel(1);
      std::vector<cv::Point2d> found;
      project(lens, &point.x, &pixel[0].x);
      cv::undistortPoints(pixel, found, matrix_of(lens), opencv_coefficients(lens), cv::noArray(), cv::noArray(),
                          tight);
      const double seen[3] = {found[0].x, found[0].y, 1.0};
      double again[2];
      project(lens, seen, again);
      if (!(std::hypot(again[0] - pixel[0].x, again[1] - pixel[0].y) < 1e-9)) continue;
      ++num_converged;
      double direction[3];
      ASSERT_TRUE(unproject(lens, &pixel[0].x, direction));
      ASSERT_NEAR(direction[0] / direction[2], found[0].x, 1e-9 * (1.0 + std::abs(found[0].x)));
      ASSERT_NEAR(direction[1] / direction[2], found[0].y, 1e-9 * (1.0 + std::abs(found[0].y)));
    }
  }
  EXPECT_GT(num_converged, num_lenses * num_points / 3);
}

TEST(Opencv, UndistortsFisheyePixelsToTheSameRaysWhereItConverges) {
  Random random(seed);
  const cv::TermCriteria tight(cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 500, 1e-15);
  const auto& model = kelvane::lens_model("OPENCV_FISHEYE");
  int num_converged = 0;
  for (int i = 0; i < num_lenses; ++i) {
    const Lens lens = make_lens(model, support::random_parameters(model, random));
    for (const cv::Point3d& point : seen_points(lens, random)) {
      std::vector<cv::Point2d> pixel(1);
      std::vector<cv::Point2d> found;
      project(lens, &point.x, &pixel[0].x);
      cv::fisheye::undistortPoints(pixel, found, matrix_of(lens), opencv_coefficients(lens), cv::noArray(),
                                   cv::noArray(), tight);
      const double seen[3] = {found[0].x, found[0].y, 1.0};
      double again[2];
      project(lens, seen, again);
      if (!(std::hypot(again[0] - pixel[0].x, again[1] - pixel[0].y) < 1e-9)) continue;
      ++num_converged;
      double direction[3];
      ASSERT_TRUE(unproject(lens, &pixel[0].x, direction));
      const double scale = 1.0 + found[0].x * found[0].x + found[0].y * found[0].y;  // of a tangent next to its angle
      ASSERT_NEAR(direction[0] / direction[2], found[0].x, 1e-9 * scale);
      ASSERT_NEAR(direction[1] / direction[2], found[0].y, 1e-9 * scale);
    }
  }
  EXPECT_GT(num_converged, num_lenses * num_points / 3);
}

}  // namespace
