// SPDX-License-Identifier: BSD-3-Clause
// What copies and assignments of solvers and cameras take over.
#include <gtest/gtest.h>

#include <opencv2/core.hpp>
#include <type_traits>
#include <vector>

#include "framework/camera_position_grad_func_hybrid.h"
#include "framework/derived_classes.h"
#include "support/matrix_of.h"

namespace {

using derived_classes::Camera_jacobian, derived_classes::Distorted, derived_classes::Prediction;
using derived_classes::jacobian, derived_classes::pixels, derived_classes::set_up;
using derived_classes::K, derived_classes::points;
using derived_classes::Points, derived_classes::start, derived_classes::truth, derived_classes::Vector;

Vector stepped(fw::Linear_taylor_solver& solver, const Vector& x) {
  Vector result;
  double err = 0.0;
  solver.inner_optimise(x, pixels(), result, err, 0);
  return result;
}

/// One more step of a solver that has made a run, once it has been assigned functions that differ from its own.
Vector step_after_assignment(bool is_plain, bool is_reset) {
  fw::Linear_taylor_solver assigned;
  set_up(assigned, jacobian<Camera_jacobian, Prediction>(is_plain));
  assigned.optimise(start, pixels());
  fw::Linear_taylor_solver source;
  set_up(source, jacobian<Camera_jacobian, Distorted>(is_plain));
  source.optimise(truth, pixels());
  assigned = source;
  if (is_reset) assigned.reset();
  return stepped(assigned, start);
}

TEST(AssignedSolver, KeepsItsCaches) {
  EXPECT_EQ(step_after_assignment(false, false), step_after_assignment(true, false));
  EXPECT_NE(step_after_assignment(false, false), step_after_assignment(false, true))
      << "it matters whose values those are";
}

TEST(CopiedSolver, BeginsAnew) {
  fw::Linear_taylor_solver source;
  set_up(source, jacobian<Camera_jacobian, Prediction>(false));
  const Vector first = stepped(source, start);
  fw::Linear_taylor_solver copy(source);
  EXPECT_EQ(stepped(copy, start), first);
  EXPECT_NE(stepped(source, start), first);
}

const fw::matrix<double> other_K = support::matrix_of({{500, 0, 300}, {0, 500, 200}, {0, 0, 1}});
const Points other_points = {{0.3, 0.2, 0.1}, {-0.5, 0.4, 0.2}};

TEST(AssignedCamera, TakesPointsIntrinsicsAndTypeAndKeepsWeightsAndBase) {
  Prediction prediction(points, K, 0);
  prediction.set_weight(0, 7.0);
  const Prediction other(other_points, other_K, -2);
  prediction = other;
  EXPECT_EQ(prediction(start), other(start));
  EXPECT_EQ(prediction(start).size(), 3 * 2 * other_points.size());
  EXPECT_EQ(prediction.get_weight(0), 7.0);

  auto* const base = new Prediction(points, K, 0);
  Camera_jacobian g(points, K, base);
  g.set_weight(0, 7.0);
  const Camera_jacobian other_g(other_points, other_K, nullptr);
  g = other_g;
  EXPECT_EQ(g.base_function(), base);
  EXPECT_EQ(g.get_weight(0), 7.0);
  cv::Mat J(4, 6, CV_64F);
  cv::Mat expected(4, 6, CV_64F);
  EXPECT_EQ(g(start, J, 0), 4);
  other_g(start, expected, 0);
  EXPECT_EQ(cv::norm(J, expected, cv::NORM_INF), 0.0);
  auto& self = g;
  g = self;
  EXPECT_EQ(g(start, J, 0), 4);
}

template <typename Hybrid>
class AssignedHybrid : public testing::Test {};
using Hybrids = testing::Types<Camera_position_grad_func_qu_aau_aan, Camera_position_grad_func_aau_qu_aan,
                               Camera_position_grad_func_aan_qu_aau>;
TYPED_TEST_SUITE(AssignedHybrid, Hybrids, );

TYPED_TEST(AssignedHybrid, TakesPointsAndIntrinsicsAndKeepsWeightsAndBase) {
  const Vector x = {0.3, 0.4, 0.2, 0.7, -3.8, 2.1, -4.1};  // the last entry is not read of rotation vectors
  const int num_columns = std::is_same_v<TypeParam, Camera_position_grad_func_aau_qu_aan> ? 6 : 7;
  const auto jacobian_of = [&](const TypeParam& g) {
    cv::Mat J(6 * static_cast<int>(other_points.size()), num_columns, CV_64F, cv::Scalar(0.0));
    EXPECT_EQ(g(x, J, 0), J.rows);
    return J;
  };
  auto* const base = new Prediction(points, K, 0);
  TypeParam g(points, K, base);
  g.set_weight(0, 7.0);
  TypeParam source(other_points, other_K, new Prediction(points, K, 0));
  source.set_weight(0, 3.0);
  g = source;
  EXPECT_EQ(g.base_function(), base);
  EXPECT_EQ(g.get_weight(0), 7.0);
  const cv::Mat J = jacobian_of(g);
  EXPECT_EQ(cv::norm(J, jacobian_of(source), cv::NORM_INF), 0.0);
  EXPECT_GT(cv::norm(J, cv::NORM_INF), 1.0);
  auto& self = g;
  g = self;
  EXPECT_EQ(cv::norm(J, jacobian_of(g), cv::NORM_INF), 0.0);
  EXPECT_EQ(g.base_function(), base);
}

}  // namespace
