// SPDX-License-Identifier: BSD-3-Clause
// The reports of the linear Taylor solver, whole, and the order of its checks.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/foreign_locale.h"
#include "support/functions.h"
#include "support/inner_optimise.h"
#include "support/matchers.h"
#include "support/matrix_of.h"
#include "support/scripted_solver.h"

namespace {

using fw::Linear_taylor_solver;
using support::Caught;
using support::inner_optimise_block;
using support::Rows;
using support::Vector;

Linear_taylor_solver solver_of(const std::vector<fw::Grad_func*>& G, const std::vector<fw::Opt_func*>& F,
                               const Rows& steps, int num_equations, int num_dimensions = 1) {
  Linear_taylor_solver solver;
  solver.set_grad_funcs(G);
  solver.set_funcs(F);
  solver.set_finite_difference_steps(steps);
  solver.set_num_equations(num_equations);
  solver.set_num_dimensions(num_dimensions);
  return solver;
}

Caught caught_from(Linear_taylor_solver& solver, const Vector& target, Vector x = {1.0, 1.0, 1.0}) {
  double err = 0.0;
  solver.reset();
  return support::caught_by([&] { solver.inner_optimise(x, target, x, err, 0); });
}

/// A report of level 0 inside the solver's context.
void expect_report(const Caught& caught, const std::string& report) {
  EXPECT_EQ(caught.text, inner_optimise_block(200, "", 1) + report + "\n");
  EXPECT_EQ(caught.level, 1);
}

Rows rows(std::size_t size) { return Rows(size, Vector{1.0}); }
fw::Grad_func* outputs(std::size_t size) { return support::linear_jacobian(rows(size)); }
fw::Opt_func* differenced(std::size_t size) { return new support::Objective(support::linear(rows(size))); }

std::string does_not_fit(const std::string& room, int k, const std::string& size, const std::string& row) {
  return inner_optimise_block(57, "Mismatch in number of equations. From target size, expected at most " + room +
                                      " equations, however base_function " + std::to_string(k) + " is returned " +
                                      size + " equations to be inserted starting from index " + row);
}

TEST(LinearTaylorSolverReport, TellsThatABaseFunctionDoesNotFitIntoTheTarget) {
  bool built = false;
  auto* second = new support::Jacobian(support::linear(rows(4)), [&](const Vector&) {
    built = true;
    return rows(4);
  });
  Linear_taylor_solver solver = solver_of({outputs(2), second}, {}, {}, 5);
  expect_report(caught_from(solver, Vector(5)), does_not_fit("5", 1, "4", "2"));
  EXPECT_FALSE(built);
}

TEST(LinearTaylorSolverReport, TellsThatADifferencedFunctionDoesNotFitIntoTheTarget) {
  Linear_taylor_solver solver = solver_of({outputs(2)}, {differenced(1), differenced(3)}, {{1.0}, {1.0}}, 5);
  expect_report(caught_from(solver, Vector(5)), does_not_fit("5", 1, "3", "3"));
}

TEST(LinearTaylorSolverReport, RunsItsLastWordAndTheNumberOfOutputsTogether) {
  Linear_taylor_solver solver = solver_of({outputs(10)}, {}, {}, 12);
  expect_report(
      caught_from(solver, Vector(12)),
      inner_optimise_block(80, "number of equations was set to 12 but functions only returned a total of10 equations"));
}

TEST(LinearTaylorSolverReport, RunsItsLastWordAndTheNumberOfTargetsTogether) {
  Linear_taylor_solver solver = solver_of({outputs(10)}, {}, {}, 10);
  expect_report(caught_from(solver, Vector(12)),
                inner_optimise_block(83, "number of equations was set to 10 but target has a total of12 equations"));
}

const Rows three_columns = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

TEST(LinearTaylorSolverReport, TellsThatAStepVectorHasTheWrongLength) {
  for (const Vector& steps : {Vector{1, 1}, Vector{1, 1, 1, 1}, Vector{}}) {
    cv::Mat J;
    Linear_taylor_solver solver = solver_of({support::linear_jacobian(three_columns, &J)},
                                            {new support::Objective(support::linear(three_columns)),
                                             new support::Objective(support::linear(three_columns))},
                                            {{1, 1, 1}, steps}, 9, 3);
    expect_report(
        caught_from(solver, Vector(9)),
        inner_optimise_block(106, "for function 1 finite difference step had " + std::to_string(steps.size()) +
                                      " elements, but num dimensions should be 3"));
    // The rows in front have been written.
    EXPECT_TRUE(support::is_close(J.rowRange(0, 3), support::matrix_of(three_columns), 0));
  }
}

TEST(LinearTaylorSolverReport, IsWrittenInTheClassicLocale) {
  const support::Foreign_locale foreign;
  Linear_taylor_solver too_many = solver_of({outputs(2000), outputs(3000)}, {}, {}, 4000);
  expect_report(caught_from(too_many, Vector(4000)), does_not_fit("4000", 1, "3000", "2000"));
  Linear_taylor_solver too_few = solver_of({outputs(1000)}, {}, {}, 1200);
  expect_report(caught_from(too_few, Vector(1200)),
                inner_optimise_block(
                    80, "number of equations was set to 1200 but functions only returned a total of1000 equations"));
}

TEST(LinearTaylorSolverReport, ComesFromTheFirstCheckThatFails) {
  // Outputs that do not fit and are not num_equations.
  Linear_taylor_solver solver = solver_of({outputs(4)}, {}, {}, 3);
  expect_report(caught_from(solver, Vector(2)), does_not_fit("2", 0, "4", "0"));
  // Neither outputs nor target are num_equations.
  solver = solver_of({outputs(2)}, {}, {}, 3);
  expect_report(
      caught_from(solver, Vector(4)),
      inner_optimise_block(80, "number of equations was set to 3 but functions only returned a total of2 equations"));
  // The target is not num_equations, the step vector is too short.
  solver = solver_of({}, {differenced(2)}, {{}}, 2);
  expect_report(caught_from(solver, Vector(3)),
                inner_optimise_block(83, "number of equations was set to 2 but target has a total of3 equations"));
  // The step vector is too short and the system under-determined.
  solver = solver_of({}, {differenced(2)}, {{1.0}}, 2, 3);
  expect_report(caught_from(solver, Vector(2)),
                inner_optimise_block(
                    106, "for function 0 finite difference step had 1 elements, but num dimensions should be 3"));
}

const std::string no_base =
    support::block("fw_opt/grad_func.cpp", 35, "const fw::Opt_func* fw::Grad_func::base_function() const",
                   "Tried to access base function for a Grad_func, but none has been set");

TEST(LinearTaylorSolverReport, TellsOfAMissingBaseFunctionInItsTurn) {
  Linear_taylor_solver solver = solver_of({new support::Baseless_jacobian, outputs(4)}, {}, {}, 3);
  expect_report(caught_from(solver, Vector(2)), no_base);
  solver = solver_of({outputs(4), new support::Baseless_jacobian}, {}, {}, 3);
  expect_report(caught_from(solver, Vector(2)), does_not_fit("2", 0, "4", "0"));
}

TEST(LinearTaylorSolverReport, NestsInTheContextOfTheLoop) {
  Linear_taylor_solver solver = solver_of({new support::Baseless_jacobian}, {}, {}, 1);
  const Caught caught = support::caught_by([&] { solver.optimise({0.0}, {0.0}); });
  EXPECT_EQ(caught.text, support::block("fw_opt/solver.cpp", 80, support::optimise_signature, "", 2) +
                             inner_optimise_block(200, "", 1) + no_base + "\n\n");
  EXPECT_EQ(caught.level, 2);
}

TEST(LinearTaylorSolverReport, WrapsWhatAFunctionThrows) {
  const support::Map failing = [](const Vector&) -> Vector { throw std::runtime_error("from a function"); };
  Linear_taylor_solver solver = solver_of({}, {new support::Objective(failing)}, {{1.0}}, 1);
  const Caught caught = caught_from(solver, Vector(1));
  EXPECT_EQ(caught.text, inner_optimise_block(200, "") + "from a function\n");
  EXPECT_EQ(caught.level, 0);
}

/// The error of a list of weights that is too short, wrapped.
void expect_weight_out_of_range(Linear_taylor_solver& solver, const Vector& target) {
  const Caught caught = caught_from(solver, target);
  EXPECT_EQ(caught.text, inner_optimise_block(200, "") + "vector::_M_range_check\n");
  EXPECT_EQ(caught.level, 0);
}

TEST(LinearTaylorSolverReport, TellsThatWeightsDoNotCoverTheFunction) {
  fw::Grad_func* g = outputs(2);
  g->set_weights({2.0});
  Linear_taylor_solver solver = solver_of({g}, {}, {}, 2);
  expect_weight_out_of_range(solver, Vector(2));
}

TEST(LinearTaylorSolverReport, TellsThatWeightsDoNotReachTheStackedRow) {
  // The list covers its own function, which is not enough for the target.
  fw::Grad_func* second = outputs(2);
  second->set_weights({2.0, 2.0});
  Linear_taylor_solver solver = solver_of({outputs(2), second}, {}, {}, 4);
  expect_weight_out_of_range(solver, Vector(4));
}

std::string outside_the_jacobian(const std::string& position, const std::string& size) {
  return support::block("fw_tools/IplImage_overloads.h", 177,
                        "T& fw::get_pix(cv::Mat&, int, int, int) [with T = double]",
                        "get_pix(): Pixel lookup at (" + position + ") but image dimensions are (" + size + ")");
}

TEST(LinearTaylorSolverReport, TellsThatAJacobianHasMoreRowsThanTheSystem) {
  auto* g = new support::Jacobian(support::linear(rows(2)), [](const Vector&) { return rows(3); });
  Linear_taylor_solver solver = solver_of({g}, {}, {}, 2);
  expect_report(caught_from(solver, Vector(2)), outside_the_jacobian("0,2", "1,2"));
}

/// Gives one output more from the call of this number on, counted from 1.
fw::Opt_func* growing_from_call(int number) {
  auto calls = std::make_shared<int>(0);
  return new support::Objective([=](const Vector& x) {
    ++*calls;
    return Vector(*calls >= number ? 3 : 2, x[0]);
  });
}

TEST(LinearTaylorSolverReport, TellsThatADifferencedFunctionHasGrown) {
  Linear_taylor_solver solver = solver_of({}, {growing_from_call(2)}, {{1.0}}, 2);
  expect_report(caught_from(solver, Vector(2)), outside_the_jacobian("0,2", "1,2"));
}

TEST(LinearTaylorSolverReport, TellsThatAFunctionHasGrownAtTheNewPoint) {
  Linear_taylor_solver solver = solver_of({}, {growing_from_call(3)}, {{1.0}}, 2);
  expect_report(caught_from(solver, Vector(2)),
                support::block("fw_tools/std_vector_overloads.h", 302,
                               "const std::vector<_Tp> fw::operator-(const std::vector<_Tp>&, const "
                               "std::vector<_Tp>&) [with T = double]",
                               "size mismatch. vec1 had size 3 but vec2 had size 2"));
}

}  // namespace
