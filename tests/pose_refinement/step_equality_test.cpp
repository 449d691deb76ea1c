// SPDX-License-Identifier: BSD-3-Clause
// Steps on measured problems against those of OpenCV on the whole Jacobian, which is of full rank for type 0.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <opencv2/core.hpp>

#include "camera_pose/camera_position_grad_func.h"
#include "camera_pose/camera_position_opt_func.h"
#include "fw_opt/matrix_rows.h"
#include "support/posedata.h"

namespace {

constexpr double eps = std::numeric_limits<double>::epsilon();

/// One step from the pose, two ways; fails when they are apart by more than 20 eps (k + k^2 r / (s d)) of it.
void expect_equal_steps(const support::Measured_problem& problem, const support::Measured_pose& pose) {
  const auto points =
      std::make_shared<const Packed_points>(problem.points.data(), static_cast<std::size_t>(problem.num_points));
  const Intrinsics intrinsics(problem.f, problem.cx, problem.cy);
  const std::vector<double> x = pose.search_vector(Representation::rotation_vector);
  cv::Mat J(2 * problem.num_points, 6, CV_64F);
  Camera_position_grad_func_aau(points, intrinsics, nullptr)(x, J, 0);
  const std::vector<double> predicted = Camera_position_opt_func(points, intrinsics, 0)(x);
  cv::Mat b(J.rows, 1, CV_64F);
  for (int i = 0; i < J.rows; ++i) {
    const auto k = static_cast<std::size_t>(i);
    b.at<double>(i) = problem.observations[k] - predicted[k];
  }
  cv::Mat expected;
  cv::solve(J, b, expected, cv::DECOMP_SVD);
  fw::Least_squares least_squares;
  fw::Matrix_rows rows(J, b);
  cv::Mat dx(6, 1, CV_64F);
  least_squares.reduce(rows, 6);
  least_squares.solve(rows, 6, static_cast<std::size_t>(J.rows), dx.ptr<double>());

  cv::Mat sigma;
  cv::SVD::compute(J, sigma);
  const double s = sigma.at<double>(0);
  const double k = s / sigma.at<double>(5);
  ASSERT_LT(k, 1e8);
  const double bound = 20.0 * eps * (k * cv::norm(expected) + k * k * cv::norm(b - J * expected) / s);
  EXPECT_LE(cv::norm(dx - expected), bound) << "condition " << k;
}

class StepEquality : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Sets, StepEquality, testing::Values("chessboard", "bal", "bal_adjusted", "castle"),
                         [](const auto& set) { return std::string(set.param); });

TEST_P(StepEquality, HoldsOnMeasuredProblemsAtTheirStartAndOptimum) {
  const std::filesystem::path folder = support::folder_of_set(GetParam());
  if (folder.empty()) GTEST_SKIP() << "the problems of " << GetParam() << " are not here: tests/data/README.md";
  const auto problems = support::read_pixel_set(folder);
  ASSERT_GE(problems.size(), 2U);
  for (const support::Measured_problem& problem : problems) {
    SCOPED_TRACE("problem " + std::to_string(problem.id));
    expect_equal_steps(problem, problem.start);
    expect_equal_steps(problem, problem.optimum);
  }
}

}  // namespace
