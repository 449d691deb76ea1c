// SPDX-License-Identifier: BSD-3-Clause
// Steps on measured problems against those of OpenCV on the whole Jacobian, which is of full rank for type 0.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <opencv2/core.hpp>

#include "camera_pose/pose_system.h"
#include "framework/camera_position_grad_func.h"
#include "framework/camera_position_opt_func.h"
#include "least_squares/matrix_solution.h"
#include "support/matrix_of.h"
#include "support/posedata.h"

namespace {

constexpr double eps = std::numeric_limits<double>::epsilon();

/// J and b of type 0 from the published classes.
void make_system(const support::Measured_problem& problem, const std::vector<double>& x, cv::Mat& J, cv::Mat& b) {
  std::vector<std::vector<double>> points;
  for (std::size_t i = 0; i < problem.points.size(); i += 3) {
    points.emplace_back(problem.points.begin() + static_cast<std::ptrdiff_t>(i),
                        problem.points.begin() + static_cast<std::ptrdiff_t>(i) + 3);
  }
  const fw::matrix<double> K = support::matrix_of({{problem.f, 0, problem.cx}, {0, problem.f, problem.cy}, {0, 0, 1}});
  J.create(2 * problem.num_points, 6, CV_64F);
  b.create(J.rows, 1, CV_64F);
  Camera_position_grad_func_aau(points, K, nullptr)(x, J, 0);
  const std::vector<double> predicted = Camera_position_opt_func(points, K, 0)(x);
  for (int i = 0; i < J.rows; ++i) {
    const auto k = static_cast<std::size_t>(i);
    b.at<double>(i) = problem.observations[k] - predicted[k];
  }
}

/// The steps of a matrix and of the pose itself.
std::vector<cv::Mat> steps(const support::Measured_problem& problem, const std::vector<double>& x, const cv::Mat& J,
                           const cv::Mat& b) {
  std::vector<cv::Mat> dx{cv::Mat(6, 1, CV_64F), cv::Mat(6, 1, CV_64F)};
  kelvane::solve_least_squares(J.ptr<double>(), b.ptr<double>(), static_cast<std::size_t>(J.rows), 6,
                               dx[0].ptr<double>());
  const kelvane::Measurements data(problem.points.data(), problem.observations.data(), 2, nullptr, 1,
                                   static_cast<std::size_t>(problem.num_points));
  kelvane::Pose_system system({kelvane::find_rotation_type(0), {problem.f, problem.cx, problem.cy}, &data, nullptr});
  system.linearise(x.data(), true);
  system.step(dx[1].ptr<double>());
  return dx;
}

/// One step from the pose, each way against the decomposition of the whole J; fails when they are apart by more than
/// 20 eps (k + k^2 r / (s d)) of it.
void expect_equal_steps(const support::Measured_problem& problem, const support::Measured_pose& pose) {
  const std::vector<double> x = pose.search_vector(kelvane::Representation::rotation_vector);
  cv::Mat J;
  cv::Mat b;
  make_system(problem, x, J, b);
  cv::Mat expected;
  cv::solve(J, b, expected, cv::DECOMP_SVD);
  cv::Mat sigma;
  cv::SVD::compute(J, sigma);
  const double s = sigma.at<double>(0);
  const double k = s / sigma.at<double>(5);
  ASSERT_LT(k, 1e8);
  const double bound = 20.0 * eps * (k * cv::norm(expected) + k * k * cv::norm(b - J * expected) / s);
  for (const cv::Mat& dx : steps(problem, x, J, b)) {
    EXPECT_LE(cv::norm(dx - expected), bound) << "condition " << k;
  }
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
