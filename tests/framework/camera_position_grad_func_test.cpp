// SPDX-License-Identifier: BSD-3-Clause
// The contract of the closed-form Jacobians: where they write, what they read, what they own.
#include "framework/camera_position_grad_func.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "framework/jacobian_classes.h"
#include "support/matchers.h"

namespace {

using jacobian_classes::Scene;

constexpr std::uint64_t seed = 5150;
constexpr double untouched = -12345.678;

/// A base function that counts how often it is evaluated and deleted.
class Counting_base : public fw::Opt_func {
 public:
  Counting_base(int& evaluations, int& deletions) : num_evaluations(evaluations), num_deletions(deletions) {}
  ~Counting_base() override { ++num_deletions; }
  std::vector<double> operator()(const std::vector<double>& /*x*/) const override {
    ++num_evaluations;
    return {};
  }

 private:
  int& num_evaluations;
  int& num_deletions;
};

template <typename Model>
class CameraPositionGradFunc : public testing::Test {
 protected:
  static constexpr int num_columns = static_cast<int>(jacobian_classes::num_columns<Model>);

  static Scene scene_at(const std::vector<double>& rotation) {
    support::Random random(seed);
    return jacobian_classes::scene_with_rotation<Model>(rotation, random);
  }
  static Scene ordinary_scene() { return scene_at(Model::rotation({0.6, 0.0, 0.8, 0.3})); }

  static cv::Mat with_intrinsics(const Scene& scene, const fw::matrix<double>& K) {
    cv::Mat J(2 * static_cast<int>(scene.points.size()), num_columns, CV_64F);
    typename Model::Class(scene.points, K, nullptr)(scene.x, J, 0);
    return J;
  }
};
TYPED_TEST_SUITE(CameraPositionGradFunc, jacobian_classes::All, jacobian_classes::Names);

TYPED_TEST(CameraPositionGradFunc, WritesFromTheElementThatStartNamesAndNowhereElse) {
  Scene scene = this->ordinary_scene();
  scene.points.resize(1);
  const cv::Mat expected = jacobian_classes::closed_form<TypeParam>(scene);
  cv::Mat J(4, this->num_columns, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(jacobian_classes::jacobian_of<TypeParam>(scene)(scene.x, J, 6), 2);
  for (int k = 0; k < 4 * this->num_columns; ++k) {
    const bool is_written = k >= 6 && k < 6 + 2 * this->num_columns;
    EXPECT_EQ(J.ptr<double>()[k], is_written ? expected.ptr<double>()[k - 6] : untouched) << "element " << k;
  }
}

TYPED_TEST(CameraPositionGradFunc, WritesNothingWithoutPoints) {
  Scene scene = this->ordinary_scene();
  scene.points.clear();
  cv::Mat J(2, this->num_columns, CV_64F, cv::Scalar(untouched));
  EXPECT_EQ(jacobian_classes::jacobian_of<TypeParam>(scene)(scene.x, J, 0), 0);
  EXPECT_EQ(cv::countNonZero(J != untouched), 0);
  cv::Mat empty;
  EXPECT_EQ(jacobian_classes::jacobian_of<TypeParam>(scene)(scene.x, empty, 0), 0);
}

TYPED_TEST(CameraPositionGradFunc, ReturnsTwoRowsForEachPointInTheirOrder) {
  Scene scene = this->ordinary_scene();
  while (scene.points.size() < 19) {  // three groups of eight, the last one not full
    const auto& X = scene.points[scene.points.size() - 3];
    const auto& Y = scene.points.back();
    scene.points.push_back({(X[0] + Y[0]) / 2, (X[1] + Y[1]) / 2, (X[2] + Y[2]) / 2});
  }
  const cv::Mat J = jacobian_classes::closed_form<TypeParam>(scene);
  ASSERT_EQ(J.rows, 38);
  for (int i = 0; i < 19; ++i) {
    Scene single = scene;
    single.points = {scene.points[static_cast<std::size_t>(i)]};
    EXPECT_EQ(support::Table(J.rowRange(2 * i, 2 * i + 2)).values,
              support::Table(jacobian_classes::closed_form<TypeParam>(single)).values);
  }
}

TYPED_TEST(CameraPositionGradFunc, ReadsThreeEntriesOfTheIntrinsicsOnly) {
  const Scene scene = this->ordinary_scene();
  const cv::Mat expected = jacobian_classes::closed_form<TypeParam>(scene);
  fw::matrix<double> K = scene.K();
  K[1][1] = 2.0 * K[0][0];
  EXPECT_EQ(support::Table(this->with_intrinsics(scene, K)).values, support::Table(expected).values);
  K[1][1] = K[0][1] = K[1][0] = K[2][0] = K[2][1] = K[2][2] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(support::Table(this->with_intrinsics(scene, K)).values, support::Table(expected).values);
  for (const auto& [row, column] : {std::pair(0U, 0U), std::pair(0U, 2U), std::pair(1U, 2U)}) {
    fw::matrix<double> changed = scene.K();
    changed[row][column] += 100.0;
    EXPECT_NE(support::Table(this->with_intrinsics(scene, changed)).values, support::Table(expected).values)
        << row << ", " << column;
  }
}

TYPED_TEST(CameraPositionGradFunc, IgnoresFurtherCoordinatesOfPointsAndFurtherEntriesOfX) {
  const Scene scene = this->ordinary_scene();
  Scene longer = scene;
  longer.x.push_back(99.0);
  for (auto& X : longer.points) X.push_back(7.0);
  EXPECT_EQ(support::Table(jacobian_classes::closed_form<TypeParam>(longer)).values,
            support::Table(jacobian_classes::closed_form<TypeParam>(scene)).values);
}

TYPED_TEST(CameraPositionGradFunc, ReplacesAZeroVectorWhereItHasAGuard) {
  for (const double last : {1.0, 0.0, -3.0}) {
    std::vector<double> zero = {0.0, -0.0, 0.0, last};
    zero.resize(TypeParam::n_r);
    const std::vector<double> replaced = jacobian_classes::without_zero_vector(zero);
    Scene scene = this->scene_at(TypeParam::guarded(zero) == zero ? TypeParam::rotation({1, 0, 0, 0.1}) : replaced);
    std::copy(replaced.begin(), replaced.end(), scene.x.begin());
    const auto at_replacement = support::Table(jacobian_classes::closed_form<TypeParam>(scene)).values;
    std::copy(zero.begin(), zero.end(), scene.x.begin());
    const auto at_zero = support::Table(jacobian_classes::closed_form<TypeParam>(scene)).values;
    if (TypeParam::guarded(zero) == zero) {
      EXPECT_NE(at_zero, at_replacement);
    } else {
      EXPECT_EQ(at_zero, at_replacement);
    }
  }
}

TYPED_TEST(CameraPositionGradFunc, OwnsItsBaseAndNeverConsultsIt) {
  const Scene scene = this->ordinary_scene();
  int evaluations = 0;
  int deletions = 0;
  {
    auto* base = new Counting_base(evaluations, deletions);
    const typename TypeParam::Class jacobian(scene.points, scene.K(), base);
    EXPECT_EQ(jacobian.base_function(), base);
    cv::Mat J(6, this->num_columns, CV_64F);
    jacobian(scene.x, J, 0);
    EXPECT_EQ(evaluations, 0);
    EXPECT_EQ(deletions, 0);
  }
  EXPECT_EQ(deletions, 1);
}

TYPED_TEST(CameraPositionGradFunc, LeavesBaseAndWeightsBehindWhenCopied) {
  const Scene scene = this->ordinary_scene();
  int evaluations = 0;
  int deletions = 0;
  {
    typename TypeParam::Class jacobian(scene.points, scene.K(), new Counting_base(evaluations, deletions));
    jacobian.set_weight(0, 5.0);
    const typename TypeParam::Class copy(jacobian);
    EXPECT_EQ(copy.get_weight(0), 1.0);
    EXPECT_EQ(support::caught_by([&] { copy.base_function(); }).text,
              support::block("fw_opt/grad_func.cpp", 35, "const fw::Opt_func* fw::Grad_func::base_function() const",
                             "Tried to access base function for a Grad_func, but none has been set"));
    cv::Mat J(6, this->num_columns, CV_64F);
    copy(scene.x, J, 0);
    EXPECT_EQ(support::Table(J).values, support::Table(jacobian_classes::closed_form<TypeParam>(scene)).values);
  }
  EXPECT_EQ(deletions, 1);
}

TYPED_TEST(CameraPositionGradFunc, DoesNotWeighItsRows) {
  const Scene scene = this->ordinary_scene();
  typename TypeParam::Class jacobian(scene.points, scene.K(), nullptr);
  jacobian.set_weights(std::vector<double>(6, 2.0));
  cv::Mat J(6, this->num_columns, CV_64F);
  jacobian(scene.x, J, 0);
  EXPECT_EQ(support::Table(J).values, support::Table(jacobian_classes::closed_form<TypeParam>(scene)).values);
}

}  // namespace
