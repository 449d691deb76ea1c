// SPDX-License-Identifier: BSD-3-Clause
// More functions than the target has room for: the packed iterations must not take the first one for the whole.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/matchers.h"
#include "support/packed_fit.h"

namespace {

using support::Curve;
using support::Fit_calls;
using support::Fit_function;
using support::Fit_jacobian;
using support::Predicts;

const Curve curve = {{13, 2, 3}, 16};

/// The report of a run against a target for a single function.
std::string report_of(fw::Linear_taylor_solver& solver) {
  const std::size_t num_equations = curve.layout.num_equations();
  solver.set_num_equations(static_cast<int>(num_equations));
  solver.set_num_dimensions(3);
  return support::caught_by([&] { solver.optimise({1.2, 0.4, -0.5}, std::vector<double>(num_equations)); }).text;
}

std::string report_of_second(int function_index) {
  return "expected at most 78 equations, however base_function " + std::to_string(function_index) +
         " is returned 78 equations to be inserted starting from index 78";
}

TEST(PackedGaussNewtonFunctions, ReportASecondJacobian) {
  for (const bool is_packed : {true, false}) {
    Fit_calls calls;
    fw::Linear_taylor_solver solver;
    solver.set_grad_funcs({new Fit_jacobian(curve, is_packed, Predicts::everywhere, calls, calls),
                           new Fit_jacobian(curve, is_packed, Predicts::everywhere, calls, calls)});
    const std::string report = report_of(solver);
    EXPECT_NE(report.find(report_of_second(1)), std::string::npos) << report;
    EXPECT_EQ(calls.packed, 0);
  }
}

TEST(PackedGaussNewtonFunctions, ReportAnObjectiveBehindAJacobian) {
  for (const bool is_packed : {true, false}) {
    Fit_calls calls;
    fw::Linear_taylor_solver solver;
    solver.set_grad_funcs({new Fit_jacobian(curve, is_packed, Predicts::everywhere, calls, calls)});
    solver.set_funcs({new Fit_function(curve, is_packed, calls)});
    solver.set_finite_difference_steps({{1e-4, 1e-4, 1e-4}});
    const std::string report = report_of(solver);
    EXPECT_NE(report.find(report_of_second(0)), std::string::npos) << report;
    EXPECT_EQ(calls.packed, 0);
  }
}

}  // namespace
