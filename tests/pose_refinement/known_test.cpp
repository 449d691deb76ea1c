// SPDX-License-Identifier: BSD-3-Clause
// What is known beside the pixels: covariances of observations, a prior of the pose.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "pose_refinement/motion.h"
#include "support/matchers.h"
#include "support/refined_problems.h"

namespace {

using kelvane::Pose;
using kelvane::Refine_problem;
using kelvane::Refine_result;
using support::Refined_problem;

std::vector<double> diagonal(const std::vector<double>& values) {
  std::vector<double> matrix(values.size() * values.size(), 0.0);
  for (std::size_t i = 0; i < values.size(); ++i) matrix[(values.size() + 1) * i] = values[i];
  return matrix;
}

/// Same pose, to rounding of a step.
void expect_same_pose(const Pose& a, const Pose& b, double tolerance) {
  EXPECT_LT(angle_between(a, b), tolerance);
  EXPECT_LT(length_between(a, b), tolerance);
}

class EitherKind : public testing::TestWithParam<bool> {
 protected:
  Refined_problem scene(std::size_t n = 30) {
    support::Random random(5);
    return support::random_scene(random, n, GetParam(), GetParam() ? 1e-3 : 1.0);
  }
};

INSTANTIATE_TEST_SUITE_P(Known, EitherKind, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "Directions" : "Pixels"; });

/// The same noise all round is a weight of one over its variance.
TEST_P(EitherKind, OneVarianceForAllIsAWeight) {
  Refined_problem problem = scene();
  const double variance = 0.01;
  const std::vector<double> covariance = diagonal(std::vector<double>(problem.d(), variance));
  Refine_problem with_covariance = problem.view();
  with_covariance.covariances = covariance;
  problem.weights.assign(30, 1.0 / variance);
  for (const kelvane::Loss loss : {kelvane::Loss::none, kelvane::Loss::huber}) {
    kelvane::Refine_options options;
    options.loss = loss;
    const Refine_result found = refine(with_covariance, options);
    options.noise_sigma = 1.0;
    const Refine_result expected = refine(problem.view(), options);
    expect_same_pose(found.pose, expected.pose, 1e-11);
    EXPECT_NEAR(found.after.robust / expected.after.robust, 1.0, 1e-12);
    EXPECT_EQ(found.noise_sigma, 1.0);
    EXPECT_EQ(found.residuals.size(), expected.residuals.size());
    for (std::size_t i = 0; i < found.residuals.size(); ++i) {
      EXPECT_NEAR(found.residuals[i], expected.residuals[i], 1e-8);
    }
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(found.covariance[i][i] / expected.covariance[i][i], 1.0, 1e-9);
  }
}

/// A covariance that is turned is the same problem as turned pixels with unequal weights.
TEST(ObservationCovariances, AreWeightsAlongTheirAxes) {
  support::Random random(6);
  Refined_problem turned = support::random_scene(random, 25, false, 0.5);
  Refined_problem straight = turned;
  const double c = std::cos(0.7);
  const double s = std::sin(0.7);
  std::vector<double> covariances;
  for (std::size_t i = 0; i < 25; ++i) {
    const double a = random.uniform(0.1, 4.0);
    const double b = random.uniform(0.1, 4.0);
    straight.weights.insert(straight.weights.end(), {1.0 / a, 1.0 / b});
    covariances.insert(covariances.end(),
                       {c * c * a + s * s * b, c * s * (a - b), c * s * (a - b), s * s * a + c * c * b});
  }
  // A turn of the picture about the principal axis turns the camera: pixels of f = 700 without a principal point.
  straight.camera = turned.camera = kelvane::pixel_camera(700, 0, 0);
  for (Refined_problem* problem : {&straight, &turned}) {
    const bool is_turned = problem == &turned;
    for (std::size_t i = 0; i < 25; ++i) {
      const std::vector<double> pixel = support::seen(problem->camera, support::pose_of_scene, &problem->points[3 * i]);
      const double du = 0.5 * std::sin(3.0 * static_cast<double>(i));
      const double dv = 0.5 * std::cos(5.0 * static_cast<double>(i));
      const double u = pixel[0] + du;
      const double v = pixel[1] + dv;
      problem->observations[2 * i] = is_turned ? c * u - s * v : u;
      problem->observations[2 * i + 1] = is_turned ? s * u + c * v : v;
    }
  }
  // p_turned = Z p with Z = [c -s; s c], so R_turned = R Z'.
  for (int i = 0; i < 3; ++i) {
    const double x = turned.start.rotation[i][0];
    const double y = turned.start.rotation[i][1];
    turned.start.rotation[i][0] = c * x - s * y;
    turned.start.rotation[i][1] = s * x + c * y;
  }
  Refine_problem problem = turned.view();
  problem.covariances = covariances;
  const Refine_result found = refine(problem);
  const Refine_result expected = refine(straight.view());
  ASSERT_GT(static_cast<int>(found.exit), 0) << found.message;
  EXPECT_LT(length_between(found.pose, expected.pose), 1e-8);
  EXPECT_NEAR(found.after.plain / expected.after.plain, 1.0, 1e-12);
}

/// Beside one that points to a point, the opposite direction is far: it is no minimum of a tangent's length alone.
TEST(ObservationCovariances, TellOppositeDirectionsApart) {
  support::Random random(7);
  Refined_problem problem = support::random_scene(random, 20, true, 0.0);
  const std::vector<double> covariance = diagonal({1e-6, 1e-6, 1e-6});
  for (std::size_t i = 0; i < 3; ++i) problem.observations[i] = -problem.observations[i];
  Refine_problem view = problem.view();
  view.covariances = covariance;
  kelvane::Refine_options options;
  options.loss = kelvane::Loss::tukey;
  const Refine_result found = refine(view, options);
  EXPECT_FALSE(found.is_inlier[0]);
  EXPECT_EQ(found.num_inliers, 19U);
}

TEST(ObservationCovariances, ThatCannotBeAreTold) {
  support::Random random(9);
  const Refined_problem problem = support::random_scene(random, 10, false, 1.0);
  const auto told_of_third = [&](const std::vector<double>& covariance) {
    std::vector<double> covariances;
    for (int i = 0; i < 10; ++i) covariances.insert(covariances.end(), {1.0, 0.0, 0.0, 1.0});
    std::copy_n(covariance.begin(), 4, &covariances[12]);
    Refine_problem view = problem.view();
    view.covariances = covariances;
    return support::caught_by([&] { refine(view); }).text;
  };
  EXPECT_EQ(told_of_third({1, 0.5, 0, 1}), "covariance of point 3 is not symmetric.");
  EXPECT_EQ(told_of_third({1, 2, 2, 1}), "covariance of point 3 is not positive definite.");
  EXPECT_EQ(told_of_third({1, 0, NAN, 1}), "covariances[14] is NaN. All of it must be finite numbers.");
}

TEST(Prior, ThatCannotBeIsTold) {
  support::Random random(9);
  const Refined_problem problem = support::random_scene(random, 10, false, 1.0);
  const auto told_of = [&](const std::vector<double>& covariance, const std::vector<double>& information, double x) {
    Refine_problem view = problem.view();
    view.prior.covariance = covariance;
    view.prior.information = information;
    view.prior.pose.centre[0] = x;
    return support::caught_by([&] { refine(view); }).text;
  };
  EXPECT_EQ(told_of(diagonal({1, 1, 1, 1, 1, 0}), {}, 0.0),
            "prior.covariance is not positive definite. What is known for sure belongs in the fixed directions.");
  EXPECT_EQ(told_of({}, diagonal({1, 1, 1, 1, 1, -1}), 0.0),
            "prior.information has a negative eigenvalue: where nothing is known, information is 0.");
  EXPECT_EQ(told_of({}, diagonal({1, NAN, 1, 1, 1, 1}), 0.0),
            "prior.information[7] is NaN. All of it must be finite numbers.");
  EXPECT_EQ(told_of({}, diagonal({1, 1, 1, 1, 1, 1}), HUGE_VAL),
            "prior.pose.centre[0] is Inf. All of it must be finite numbers.");
}

TEST_P(EitherKind, APriorWithoutInformationChangesNothing) {
  const Refined_problem problem = scene();
  kelvane::Refine_options options;
  options.noise_sigma = 1.0;
  const Refine_result expected = refine(problem.view(), options);
  const std::vector<double> nothing(36, 0.0);
  Refine_problem with_prior = problem.view();
  with_prior.prior.pose = support::pose_at({1, 2, 1}, {7, 8, 9});
  with_prior.prior.information = nothing;
  const Refine_result found = refine(with_prior);
  expect_same_pose(found.pose, expected.pose, 1e-13);
  EXPECT_NEAR(found.after.robust / expected.after.robust, 1.0, 1e-13);
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(found.covariance[i][i] / expected.covariance[i][i], 1.0, 1e-11);
}

TEST_P(EitherKind, APriorOfEndlessInformationHoldsThePose) {
  const Refined_problem problem = scene();
  const Pose known = support::pose_at({0.34, -0.47, 0.19}, {0.2, -0.25, -3.9});
  for (const double size : {1e16, 1e30, 1e100}) {
    SCOPED_TRACE(size);
    const std::vector<double> information = diagonal(std::vector<double>(6, size));
    Refine_problem with_prior = problem.view();
    with_prior.prior.pose = known;
    with_prior.prior.information = information;
    const Refine_result found = refine(with_prior);
    EXPECT_GT(static_cast<int>(found.exit), 0) << found.message;
    expect_same_pose(found.pose, known, 1e-9);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(found.covariance[i][i] * size, 1.0, 1e-3);
  }
}

/// Information about three of six: the others are left to the points.
TEST(Prior, MayLeaveDirectionsOpen) {
  support::Random random(8);
  const Refined_problem problem = support::random_scene(random, 30, false, 1.0);
  const std::vector<double> information = diagonal({0, 0, 0, 1e18, 1e18, 1e18});
  Refine_problem with_prior = problem.view();
  with_prior.prior.pose.centre[0] = 0.12;
  with_prior.prior.pose.centre[1] = -0.21;
  with_prior.prior.pose.centre[2] = -4.1;
  with_prior.prior.information = information;
  const Refine_result found = refine(with_prior);
  Refine_problem fixed = problem.view();
  std::copy_n(with_prior.prior.pose.centre, 3, fixed.start.centre);
  fixed.fixed = kelvane::fixed_centre;
  const Refine_result expected = refine(fixed);
  expect_same_pose(found.pose, expected.pose, 1e-8);
}

/// One direction in the plane and a prior: a line in closed form. The camera sees one point far away at (u, 0), so its
/// turn about y, and only that, is measured; both turns are averaged by their information.
TEST(Prior, IsAveragedByInformation) {
  const std::vector<double> points = {0, 0, 1e9};
  const double angle = 1e-6;
  const std::vector<double> directions = {std::sin(angle), 0, std::cos(angle)};
  const std::vector<double> covariance = diagonal({4e-14, 4e-14, 4e-14});
  const std::vector<double> prior = diagonal({1e-14, 1e-14, 1e-14, 1e-12, 1e-12, 1e-12});
  Refine_problem problem;
  problem.points = points;
  problem.observations = directions;
  problem.camera = kelvane::direction_camera();
  problem.covariances = covariance;
  problem.prior.covariance = prior;
  const Refine_result found = refine(problem);
  EXPECT_GT(static_cast<int>(found.exit), 0) << found.message;
  // Seen at p = R' X: a turn of w_y about y moves the point to -w_y.
  EXPECT_NEAR(found.pose.rotation[0][2] / angle, -(1 / 4e-14) / (1 / 4e-14 + 1 / 1e-14), 1e-6);
  constexpr double quadrature = 1e-5;  // over what normal noise does
  EXPECT_NEAR(found.covariance[1][1] * (1 / 4e-14 + 1 / 1e-14), 1.0, quadrature);
  EXPECT_NEAR(found.covariance[2][2] / 1e-14, 1.0, quadrature);
}

}  // namespace
