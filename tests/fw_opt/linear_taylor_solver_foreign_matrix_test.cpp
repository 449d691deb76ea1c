// SPDX-License-Identifier: BSD-3-Clause
// Functions that do more than a solver expects: another matrix in the place of J, other functions while they are
// called.
#include <gtest/gtest.h>

#include <functional>
#include <opencv2/core.hpp>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/functions.h"
#include "support/matchers.h"

namespace {

using support::Vector;

constexpr int num_rows = 5;

cv::Mat wide_matrix() {
  cv::Mat wide(num_rows, 4, CV_64F);
  for (int i = 0; i < num_rows; ++i) {
    for (int c = 0; c < 4; ++c) wide.at<double>(i, c) = c < 2 ? i * c + 1.0 : -1e3 - i;
  }
  return wide;
}

/// A Jacobian that does with J what it likes.
class Free_jacobian final : public fw::Grad_func {
 public:
  explicit Free_jacobian(std::function<void(cv::Mat&)> write)
      : Grad_func(new support::Objective([](const Vector& /*x*/) { return Vector(num_rows, 0.0); })),
        write_(std::move(write)) {}
  int operator()(const Vector& /*x*/, cv::Mat& J, int /*start_row*/) const override {
    write_(J);
    return num_rows;
  }

 private:
  std::function<void(cv::Mat&)> write_;
};

Vector refined(std::function<void(cv::Mat&)> write) {
  fw::Linear_taylor_solver solver;
  solver.set_grad_funcs({new Free_jacobian(std::move(write))});
  solver.set_num_equations(num_rows);
  solver.set_num_dimensions(2);
  return solver.optimise({0.0, 0.0}, {1.0, 2.0, 3.0, 4.0, 6.0});
}

TEST(ForeignMatrix, IsReadRowByRowWhereItIsPartOfAnother) {
  const Vector expected = refined([](cv::Mat& J) { wide_matrix().colRange(0, 2).copyTo(J); });
  EXPECT_EQ(refined([](cv::Mat& J) { J = wide_matrix().colRange(0, 2); }), expected);
}

TEST(ForeignMatrix, IsRefusedWhereItDoesNotFit) {
  const std::vector<std::function<void(cv::Mat&)>> writes = {
      [](cv::Mat& J) { J = cv::Mat(num_rows + 1, 2, CV_64F, cv::Scalar(1)); },
      [](cv::Mat& J) { J = cv::Mat(num_rows - 1, 2, CV_64F, cv::Scalar(1)); },
      [](cv::Mat& J) { J = cv::Mat(num_rows, 2, CV_64FC2, cv::Scalar(1, 1)); }};
  for (std::size_t i = 0; i < writes.size(); ++i) {
    const support::Caught caught = support::caught_by([&] { refined(writes[i]); });
    EXPECT_NE(caught.text.find("linear_taylor_solver.cpp(200)"), std::string::npos) << i << ": " << caught.text;
  }
}

/// A line that has itself and its like set anew at every call.
class Restless_line final : public fw::Opt_func {
 public:
  explicit Restless_line(fw::Linear_taylor_solver& solver) : solver_(solver) {}
  Vector operator()(const Vector& x) const override {
    solver_.set_finite_difference_steps(Vectors(solver_.get_funcs().size(), Vector(2, 0.1)));
    solver_.set_funcs(std::vector<fw::Opt_func*>(solver_.get_funcs()));
    return {x[0], x[1], x[0] + x[1]};
  }

 private:
  using Vectors = std::vector<Vector>;
  fw::Linear_taylor_solver& solver_;
};

TEST(FunctionsThatSetFunctions, AreCalledAsBefore) {
  fw::Linear_taylor_solver solver;
  solver.set_funcs({new Restless_line(solver), new Restless_line(solver)});
  solver.set_finite_difference_steps({{0.1, 0.1}, {0.1, 0.1}});
  solver.set_num_equations(6);
  solver.set_num_dimensions(2);
  const Vector x = solver.optimise({0.0, 0.0}, {1.0, 2.0, 3.0, 1.0, 2.0, 3.0});
  EXPECT_NEAR(x[0], 1.0, 1e-12);
  EXPECT_NEAR(x[1], 2.0, 1e-12);
}

}  // namespace
