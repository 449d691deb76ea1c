// SPDX-License-Identifier: BSD-3-Clause
// What the hybrid Jacobians report when J does not fit, and what they own.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "framework/camera_position_opt_func.h"
#include "framework/hybrid_classes.h"
#include "fw_opt/linear_taylor_solver.h"
#include "support/cases.h"
#include "support/inner_optimise.h"
#include "support/matchers.h"
#include "support/scripted_solver.h"

namespace {

using hybrid_classes::num_columns, hybrid_classes::Scene;
using support::block, support::Caught, support::caught_by, support::is_close;

constexpr std::uint64_t seed = 20240918;
constexpr double untouched = -123.25;
constexpr const char* file = "kelvane_mex.cpp";
constexpr int n = 6;  // rows of a block: the scene has three points

std::string size_text(int columns, int rows) {
  return "(" + std::to_string(columns) + "," + std::to_string(rows) + ")";
}

template <typename Hybrid>
class HybridReport : public testing::Test {
 protected:
  static std::string signature() {
    return std::string("virtual int ") + Hybrid::name + "::operator()(const std::vector<double>&, cv::Mat&, int) const";
  }
  static Scene scene() {
    support::Random random(seed);
    return hybrid_classes::scene_with_rotation<Hybrid>(Hybrid::Primary::rotation({0.6, 0.0, 0.8, 0.7}), random);
  }
  static Caught caught_with(cv::Mat& J) {
    const Scene at = scene();
    const typename Hybrid::Class hybrid(at.points, at.K(), nullptr);
    return caught_by([&] { hybrid(at.x, J, 0); });
  }
  /// Block 2 is as wide as block 3, so its check is the one that is heard, whatever the width of J.
  static std::string size_report(int columns) {
    const std::string details = std::string("Size mismatch for ") + Hybrid::block_2_label + " grads. output roi was " +
                                size_text(columns, n) + " but input was " + size_text(num_columns<Hybrid>, n);
    return block(file, Hybrid::line, signature(), "", 1) + block(file, Hybrid::block_2_line, signature(), details) +
           "\n";
  }
};
TYPED_TEST_SUITE(HybridReport, hybrid_classes::All, hybrid_classes::Names);

TYPED_TEST(HybridReport, TellsTheSizesForEveryOtherNumberOfColumns) {
  for (int columns = 3; columns <= 12; ++columns) {  // three columns and more leave room for block 1
    if (columns == num_columns<TypeParam>) continue;
    SCOPED_TRACE(columns);
    cv::Mat J(3 * n, columns, CV_64F, cv::Scalar(untouched));
    const Caught caught = this->caught_with(J);
    EXPECT_EQ(caught.text, this->size_report(columns));
    EXPECT_EQ(caught.level, 1);
  }
}

TYPED_TEST(HybridReport, IsThatOfASolverWithAnotherNumberOfDimensions) {
  for (const int columns : {num_columns<TypeParam> - 1, num_columns<TypeParam> + 1}) {
    SCOPED_TRACE(columns);
    const Scene at = this->scene();
    fw::Linear_taylor_solver solver;
    auto objective = std::make_unique<Camera_position_opt_func>(at.points, at.K(), TypeParam::type);
    solver.set_grad_funcs({new typename TypeParam::Class(at.points, at.K(), objective.release())});
    solver.set_num_equations(3 * n);
    solver.set_num_dimensions(columns);
    std::vector<double> x = at.x;
    x.resize(8, 0.5);
    const Caught caught = caught_by([&] { solver.optimise(x, std::vector<double>(3 * n)); });
    EXPECT_EQ(caught.text, block("fw_opt/solver.cpp", 80, support::optimise_signature, "", 3) +
                               support::inner_optimise_block(200, "", 2) + this->size_report(columns) + "\n\n");
  }
}

TYPED_TEST(HybridReport, ComesBeforeBlocks2And3AreWritten) {
  cv::Mat J(3 * n, num_columns<TypeParam> + 1, CV_64F, cv::Scalar(untouched));
  this->caught_with(J);
  const int num_in_block_1 = n * num_columns<TypeParam>;
  const cv::Mat elements = J.reshape(1, 1);
  const cv::Mat rest = elements.colRange(num_in_block_1, elements.cols);
  EXPECT_TRUE(is_close(rest, cv::Mat(1, rest.cols, CV_64F, cv::Scalar(untouched)), 0.0));
  EXPECT_NE(elements.at<double>(0, num_in_block_1 - 1), untouched);
}

/// What OpenCV says of rows that J does not have.
std::string row_range_text(const cv::Mat& J, int start, int end) {
  return caught_by([&] { J.rowRange(start, end); }).text;
}

TYPED_TEST(HybridReport, WrapsWhatOpencvSaysOfMissingRows) {
  for (const int num_blocks : {1, 2}) {
    SCOPED_TRACE(num_blocks);
    cv::Mat J(num_blocks * n, num_columns<TypeParam>, CV_64F, cv::Scalar(untouched));
    const std::string text = row_range_text(J, num_blocks * n, (num_blocks + 1) * n);
    ASSERT_NE(text, "nothing thrown");
    const Caught caught = this->caught_with(J);
    EXPECT_EQ(caught.text, block(file, TypeParam::line, this->signature(), "") + text + "\n");
    EXPECT_EQ(caught.level, 0);
    const cv::Mat rest = J.rowRange(n, J.rows);
    EXPECT_TRUE(is_close(rest, cv::Mat(rest.rows, rest.cols, CV_64F, cv::Scalar(untouched)), 0.0));
  }
}

/// An objective that counts how often it was deleted.
struct Counted_objective final : fw::Opt_func {
  int& num_deleted;
  explicit Counted_objective(int& counter) : num_deleted(counter) {}
  Counted_objective(const Counted_objective&) = delete;
  Counted_objective& operator=(const Counted_objective&) = delete;
  ~Counted_objective() override { ++num_deleted; }
  std::vector<double> operator()(const std::vector<double>& /*x*/) const override { return {}; }
};

/// The class with its members laid open.
template <typename Class>
struct Opened : Class {
  using Class::aan, Class::aau, Class::Class, Class::qu;
};

template <typename Hybrid>
class HybridOwnership : public HybridReport<Hybrid> {};
TYPED_TEST_SUITE(HybridOwnership, hybrid_classes::All, hybrid_classes::Names);

TYPED_TEST(HybridOwnership, DeletesTheBaseOnce) {
  int num_deleted = 0;
  const Scene at = this->scene();
  {
    auto* base = new Counted_objective(num_deleted);
    const typename TypeParam::Class hybrid(at.points, at.K(), base);
    EXPECT_EQ(hybrid.base_function(), base);
    EXPECT_EQ(num_deleted, 0);
  }
  EXPECT_EQ(num_deleted, 1);
}

TYPED_TEST(HybridOwnership, DeletesTheBaseThroughTheInterface) {
  int num_deleted = 0;
  const Scene at = this->scene();
  std::unique_ptr<fw::Grad_func> hybrid =
      std::make_unique<typename TypeParam::Class>(at.points, at.K(), new Counted_objective(num_deleted));
  hybrid.reset();
  EXPECT_EQ(num_deleted, 1);
}

TYPED_TEST(HybridOwnership, GivesTheInnerJacobiansNoBase) {
  int num_deleted = 0;
  const Scene at = this->scene();
  const Opened<typename TypeParam::Class> hybrid(at.points, at.K(), new Counted_objective(num_deleted));
  for (const fw::Grad_func* inner :
       {static_cast<const fw::Grad_func*>(&hybrid.aau), static_cast<const fw::Grad_func*>(&hybrid.aan),
        static_cast<const fw::Grad_func*>(&hybrid.qu)}) {
    EXPECT_EQ(caught_by([&] { inner->base_function(); }).text,
              block("fw_opt/grad_func.cpp", 35, "const fw::Opt_func* fw::Grad_func::base_function() const",
                    "Tried to access base function for a Grad_func, but none has been set"));
  }
}

TYPED_TEST(HybridOwnership, LeavesBaseAndWeightsOutOfACopy) {
  int num_deleted = 0;
  const Scene at = this->scene();
  auto original = std::make_unique<typename TypeParam::Class>(at.points, at.K(), new Counted_objective(num_deleted));
  original->set_weight(0, 5.0);
  const typename TypeParam::Class copy(*original);
  EXPECT_EQ(copy.get_weight(0), 1.0);
  EXPECT_EQ(caught_by([&] { copy.base_function(); }).level, 0);
  original.reset();
  EXPECT_EQ(num_deleted, 1);

  cv::Mat J(3 * n, num_columns<TypeParam>, CV_64F);
  EXPECT_EQ(copy(at.x, J, 0), 3 * n);
  EXPECT_TRUE(is_close(J, hybrid_classes::jacobian<TypeParam>(at), 0.0));
}

TYPED_TEST(HybridOwnership, PassesItsWeightsToTheBase) {
  int num_deleted = 0;
  const Scene at = this->scene();
  auto* base = new Counted_objective(num_deleted);
  typename TypeParam::Class hybrid(at.points, at.K(), base);
  hybrid.set_weight(1, 3.0);
  EXPECT_EQ(base->get_weight(0), 0.0);
  EXPECT_EQ(base->get_weight(1), 3.0);
}

}  // namespace
