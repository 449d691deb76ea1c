// SPDX-License-Identifier: BSD-3-Clause
// The hybrid types at rotations where a representation or its Jacobian ends: what is written, and what a call returns.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>

#include "framework/camera_position_opt_func.h"
#include "framework/hybrid_classes.h"
#include "fw_opt/linear_taylor_solver.h"
#include "mex_host.h"
#include "support/cases.h"
#include "support/matchers.h"
#include "support/small_matrices.h"

namespace {

using hybrid_classes::Aan_qu_aau, hybrid_classes::Aau_qu_aan, hybrid_classes::Qu_aau_aan;
using hybrid_classes::block, hybrid_classes::is_finite, hybrid_classes::Scene;
using support::is_close;
using Vector = std::vector<double>;

constexpr std::uint64_t seed = 20241003;
constexpr double half = 0.70710678118654752;
constexpr double agreement = 1e-9;  // as for ordinary rotations

/// Where at least one entry of a representation Jacobian, or of block 1 itself, is not finite.
template <typename Hybrid>
std::vector<Vector> non_finite_rotations();
template <>
std::vector<Vector> non_finite_rotations<Qu_aau_aan>() {
  return {{0, 0, 0, 1},         {0, 0, 0, -1},        {0, 0, 0, 2},         {0, 0, 0, 0.5},
          {0, 0, 0, 0},         {0.1, 0.2, 0.2, 1},   {0, 0, 1, 1},         {0, 0.3, 0, -1},
          {1, 1, 1, 1 + 1e-15}, {0.3, 0.2, 0.1, 1.5}, {0.3, 0.2, 0.1, -1e3}};
}
template <>
std::vector<Vector> non_finite_rotations<Aau_qu_aan>() {
  return {{0, 0, 0}, {-0.0, 0, 0}, {0, 1e-110, 0}, {0, 0, 1e-170}};
}
template <>
std::vector<Vector> non_finite_rotations<Aan_qu_aau>() {
  return {{0, 0, 0, 0.5}, {0, 0, 0, 0}};
}

/// These rotation entries, whatever they mean, and points in front of a camera without rotation.
Scene scene_at(const Vector& rotation, std::size_t num_points) {
  support::Random random(seed);
  Scene scene{rotation, {500, 320, 240}, {}};
  scene.x.insert(scene.x.end(), {0.1, -0.2, 0.3});
  for (std::size_t i = 0; i < num_points; ++i) {
    scene.points.push_back({random.uniform(-1, 1), random.uniform(-1, 1), random.uniform(3, 5)});
  }
  return scene;
}

/// The pixels that a camera without rotation sees, a little to the side.
Vector pixels_of(const Scene& scene) {
  Vector pixels;
  for (const Vector& X : scene.points) {
    const auto p = support::camera_frame_point<double>({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, {0.15, -0.1, 0.2}, X);
    for (const double coordinate : support::pixel(scene.intrinsics.f, scene.intrinsics.cx, scene.intrinsics.cy, p)) {
      pixels.push_back(coordinate);
    }
  }
  return pixels;
}

/// One call of the module, one iteration.
Vector refined(const Scene& scene, int type, mex_host::Error_call error_call = mex_host::Error_call::throws) {
  Vector parameters = scene.x;
  parameters.insert(parameters.end(), {scene.intrinsics.f, scene.intrinsics.cx, scene.intrinsics.cy});
  Vector points;
  for (const Vector& X : scene.points) points.insert(points.end(), X.begin(), X.end());
  const auto result = mex_host::call({mex_host::row(parameters), mex_host::real_matrix(3, scene.points.size(), points),
                                      mex_host::real_matrix(2, scene.points.size(), pixels_of(scene)),
                                      mex_host::row({0, 0, -1e9, 0}), mex_host::scalar(type)},
                                     1, error_call);
  EXPECT_EQ(result.message, "");
  return result.output ? result.output->values : Vector{};
}

template <typename Hybrid>
class DegenerateHybrid : public testing::Test {};
TYPED_TEST_SUITE(DegenerateHybrid, hybrid_classes::All, hybrid_classes::Names);

TYPED_TEST(DegenerateHybrid, WritesEntriesThatAreNotFinite) {
  for (const Vector& rotation : non_finite_rotations<TypeParam>()) {
    const cv::Mat J = hybrid_classes::jacobian<TypeParam>(scene_at(rotation, 4));
    EXPECT_FALSE(is_finite(J)) << testing::PrintToString(rotation);
  }
}

// 4 points make 24 equations, which OpenCV solves itself; 12 points make 72, which it hands to LAPACK.
TYPED_TEST(DegenerateHybrid, GivesTheStartBackThroughTheModule) {
  for (const std::size_t num_points : {4U, 12U}) {
    for (const Vector& rotation : non_finite_rotations<TypeParam>()) {
      SCOPED_TRACE(testing::PrintToString(rotation));
      const Scene scene = scene_at(rotation, num_points);
      EXPECT_EQ(refined(scene, TypeParam::type), scene.x);
      EXPECT_EQ(refined(scene, TypeParam::type, mex_host::Error_call::jumps), scene.x);
    }
  }
}

TYPED_TEST(DegenerateHybrid, GivesTheStartBackAfterManyIterations) {
  for (const Vector& rotation : non_finite_rotations<TypeParam>()) {
    SCOPED_TRACE(testing::PrintToString(rotation));
    const Scene scene = scene_at(rotation, 12);
    auto objective = std::make_unique<Camera_position_opt_func>(scene.points, scene.K(), TypeParam::type);
    fw::Linear_taylor_solver solver;
    solver.set_num_dimensions(static_cast<int>(scene.x.size()));
    solver.set_num_equations(72);
    solver.set_max_iters(20);
    solver.set_grad_funcs({new typename TypeParam::Class(scene.points, scene.K(), objective.release())});
    Vector target = pixels_of(scene);
    const Vector once = target;
    for (int k = 0; k < 2; ++k) target.insert(target.end(), once.begin(), once.end());
    EXPECT_EQ(solver.optimise(scene.x, target), scene.x);
  }
}

TEST(QuaternionHybrid, KeepsTranslationColumnsWhereOnlyTheAngleIsLost) {
  for (const Vector& q : {Vector{0, 0, 0, 1}, {0, 0, 0, -1}, {0.1, 0.2, 0.2, 1}, {0.3, 0.2, 0.1, 1.5}}) {
    SCOPED_TRACE(testing::PrintToString(q));
    const cv::Mat J = hybrid_classes::jacobian<Qu_aau_aan>(scene_at(q, 4));
    EXPECT_TRUE(is_finite(block(J, 1)));
    for (const int k : {2, 3}) {
      EXPECT_FALSE(is_finite(block(J, k)));
      const cv::Mat expected = block(J, 1).colRange(4, 7);
      const double unit = 1.0 / support::largest_entry(expected);
      // Without a rotation the guards of quaternion and rotation vector turn by some 1e-9.
      EXPECT_TRUE(is_close(cv::Mat(block(J, k).colRange(4, 7) * unit), cv::Mat(expected * unit), 1e-8));
    }
  }
}

TEST(RotationVectorHybrid, LosesBothOtherBlocksWithoutARotation) {
  const cv::Mat J = hybrid_classes::jacobian<Aau_qu_aan>(scene_at({0, 0, 0}, 4));
  EXPECT_TRUE(is_finite(block(J, 1)));
  for (int row = 0; row < J.rows / 3; ++row) {
    for (int column = 0; column < 3; ++column) EXPECT_FALSE(std::isfinite(block(J, 2).at<double>(row, column)));
    for (int column = 0; column < 6; ++column) EXPECT_FALSE(std::isfinite(block(J, 3).at<double>(row, column)));
  }
  EXPECT_TRUE(is_finite(block(J, 2).colRange(3, 6)));
}

// An axis with the angle 0 still has its direction: the angle moves, the axis cannot.
TEST(AngleAxisHybrid, TurnsAboutItsAxisFromTheAngleZero) {
  const Scene scene = scene_at({0, 0.6, 0.8, 0}, 12);
  const cv::Mat J = hybrid_classes::jacobian<Aan_qu_aau>(scene);
  ASSERT_TRUE(is_finite(J));
  EXPECT_TRUE(is_close(cv::Mat(J.colRange(0, 3)), cv::Mat(J.rows, 3, CV_64F, cv::Scalar(0)), 0.0));
  const Vector x = refined(scene, -3);
  ASSERT_EQ(x.size(), 7U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(x[i], scene.x[i], 1e-12);
  EXPECT_GT(std::abs(x[3]), 1e-6);
  for (const double entry : x) EXPECT_TRUE(std::isfinite(entry));
}

const Vector half_turn_axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.6, 0, 0.8}, {0.48, 0.6, 0.64}, {half, -half, 0}};

TYPED_TEST(DegenerateHybrid, IsFiniteAtAHalfTurn) {
  for (const Vector& axis : half_turn_axes) {
    SCOPED_TRACE(testing::PrintToString(axis));
    const Vector rotation = TypeParam::Primary::rotation({axis[0], axis[1], axis[2], support::pi});
    support::Random random(seed);
    Scene scene = hybrid_classes::scene_with_rotation<TypeParam>(rotation, random, 12);
    EXPECT_TRUE(is_finite(hybrid_classes::jacobian<TypeParam>(scene)));
    const Vector x = refined(scene, TypeParam::type);
    EXPECT_EQ(x.size(), scene.x.size());
    for (const double entry : x) EXPECT_TRUE(std::isfinite(entry));
  }
}

/// The largest difference of a block from block 1 in what changes the rotation, relative to block 1.
double disagreement_at_half_turn(const Vector& axis, int number) {
  support::Random random(seed);
  const Vector q{axis[0], axis[1], axis[2], 0};
  const cv::Mat J = hybrid_classes::jacobian<Qu_aau_aan>(hybrid_classes::scene_with_rotation<Qu_aau_aan>(q, random));
  const cv::Mat basis = support::orthogonal_directions(q);
  const cv::Mat first = support::product_of(block(J, 1).colRange(0, 4), basis);
  const cv::Mat other = support::product_of(block(J, number).colRange(0, 4), basis);
  return support::largest_entry(other - first) / support::largest_entry(first);
}

// At a half turn the conversion from the matrix knows the sign of no more than one entry of the axis.
TEST(QuaternionHybrid, AgreesAtAHalfTurnAboutAnAxisWithoutMixedSigns) {
  for (const int k : {2, 3}) {
    for (std::size_t i = 0; i < 5; ++i) EXPECT_LT(disagreement_at_half_turn(half_turn_axes[i], k), agreement) << i;
  }
}

TEST(QuaternionHybrid, DisagreesAtAHalfTurnAboutAnAxisWithMixedSigns) {
  for (const int k : {2, 3}) EXPECT_GT(disagreement_at_half_turn(half_turn_axes[5], k), 0.1) << k;
}

}  // namespace
