// SPDX-License-Identifier: BSD-3-Clause
// Which Jacobians say that the predictions they make on the way are those of their base function.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

#include "camera_pose/camera_position_grad_func.h"
#include "camera_pose/camera_position_opt_func.h"

namespace {

using Points = std::shared_ptr<const Packed_points>;

const Intrinsics simple(500.0, 320.0, 240.0);

Points some_points() {
  return std::make_shared<const Packed_points>(std::vector<std::vector<double>>{{1.0, 2.0, 3.0}, {-1.0, 0.0, 4.0}});
}

/// An objective of another class that predicts the same.
class Imitation final : public fw::Opt_func {
 public:
  std::vector<double> operator()(const std::vector<double>& /*x*/) const override { return {}; }
};

/// Whether a Jacobian with simple intrinsics predicts this base.
template <typename Jacobian>
bool predicts(const Points& points, fw::Opt_func* base) {
  const Jacobian jacobian(points, simple, base);
  return jacobian.packed()->predicts_base();
}

template <typename Jacobian>
bool predicts_type(int rotation_type) {
  const Points points = some_points();
  return predicts<Jacobian>(points, new Camera_position_opt_func(points, simple, rotation_type));
}

TEST(PredictedBase, IsTheObjectiveOfTheSameType) {
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_aau>(0));
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_aan>(1));
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_qu>(2));
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_aau_bv>(10));
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_aan_bv>(11));
  EXPECT_TRUE(predicts_type<Camera_position_grad_func_qu_bv>(12));
}

TEST(PredictedBase, IsNotThatOfAModelOfItsOwn) { EXPECT_FALSE(predicts_type<Camera_position_grad_func_qn>(3)); }

TEST(PredictedBase, IsNoObjectiveOfAnotherType) {
  for (const int type : {1, 2, 3, 10, 11, 12, -1, -2, -3, 4}) {
    EXPECT_FALSE(predicts_type<Camera_position_grad_func_aau>(type)) << type;
  }
}

TEST(PredictedBase, HasTheVeryPointsOfTheJacobian) {
  const Points points = some_points();
  EXPECT_FALSE(predicts<Camera_position_grad_func_aau>(points, new Camera_position_opt_func(some_points(), simple, 0)));
}

TEST(PredictedBase, HasTheIntrinsicsOfTheJacobian) {
  const Points points = some_points();
  const Intrinsics others(500.0, 320.0, 241.0);
  EXPECT_FALSE(predicts<Camera_position_grad_func_aau>(points, new Camera_position_opt_func(points, others, 0)));
}

TEST(PredictedBase, HasIntrinsicsThatTheJacobianReadsAsAWhole) {
  const Points points = some_points();
  Intrinsics skewed = simple;
  skewed.K[0][1] = 1.0;
  const Camera_position_grad_func_aau jacobian(points, skewed, new Camera_position_opt_func(points, skewed, 0));
  EXPECT_FALSE(jacobian.packed()->predicts_base());
}

TEST(PredictedBase, IsNoFunctionOfAnotherClassAndNotNull) {
  EXPECT_FALSE(predicts<Camera_position_grad_func_aau>(some_points(), new Imitation));
  EXPECT_FALSE(predicts<Camera_position_grad_func_aau>(some_points(), nullptr));
}

TEST(PredictedBase, EndsWhereAnAxisHasNoDirection) {
  const Camera_position_grad_func_aan jacobian(some_points(), simple, nullptr);
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  // The squared length up to which the objective's conversion leaves an axis without one is 1e-16.
  EXPECT_FALSE(jacobian.packed()->predicts_base_at({0.0, 0.0, 0.0, 0.5, 0.0, 0.0, 0.0}));
  EXPECT_FALSE(jacobian.packed()->predicts_base_at({0.0, 0.99e-8, 0.0, 0.5, 0.0, 0.0, 0.0}));
  EXPECT_FALSE(jacobian.packed()->predicts_base_at({nan, 1.0, 1.0, 0.5, 0.0, 0.0, 0.0}));
  EXPECT_TRUE(jacobian.packed()->predicts_base_at({1.01e-8, 0.0, 0.0, 0.5, 0.0, 0.0, 0.0}));
  EXPECT_TRUE(jacobian.packed()->predicts_base_at({0.0, 1.01e-8, 0.0, 0.5, 0.0, 0.0, 0.0}));
  EXPECT_TRUE(jacobian.packed()->predicts_base_at({0.0, 0.0, 1.01e-8, 0.5, 0.0, 0.0, 0.0}));
}

}  // namespace
