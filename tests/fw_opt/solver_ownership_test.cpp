// SPDX-License-Identifier: BSD-3-Clause
// Tests of who deletes a solver's functions, when, and how often.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "fw_opt/linear_taylor_solver.h"
#include "support/functions.h"

namespace {

using fw::Linear_taylor_solver;
using support::Logged_jacobian;
using support::Logged_objective;
using Log = std::vector<std::string>;

std::unique_ptr<Linear_taylor_solver> solver_with_functions(Log& log) {
  auto solver = std::make_unique<Linear_taylor_solver>();
  solver->set_grad_funcs({new Logged_jacobian(log, "g0"), nullptr, new Logged_jacobian(log, "g1")});
  solver->set_funcs({new Logged_objective(log, "f0"), nullptr, new Logged_objective(log, "f1")});
  return solver;
}

const Log all_in_order = {"f0", "f1", "g0", "g0 base", "g1", "g1 base"};

TEST(SolverOwnership, DeletesObjectivesThenJacobiansEachOnce) {
  Log log;
  std::unique_ptr<fw::Solver> solver = solver_with_functions(log);
  EXPECT_TRUE(log.empty());
  solver.reset();
  EXPECT_EQ(log, all_in_order);
}

TEST(SolverOwnership, IsSharedByCopies) {
  Log log;
  auto source = solver_with_functions(log);
  auto copy = std::make_unique<Linear_taylor_solver>(*source);
  EXPECT_EQ(copy->get_funcs(), source->get_funcs());
  EXPECT_EQ(copy->get_grad_funcs(), source->get_grad_funcs());
  source.reset();
  EXPECT_TRUE(log.empty());
  copy.reset();
  EXPECT_EQ(log, all_in_order);
}

TEST(SolverOwnership, IsSharedByAssignment) {
  Log log;
  auto source = solver_with_functions(log);
  auto target = std::make_unique<Linear_taylor_solver>();
  EXPECT_EQ(&(*target = *source), target.get());
  EXPECT_EQ(target->get_funcs(), source->get_funcs());
  target.reset();
  EXPECT_TRUE(log.empty());
  source.reset();
  EXPECT_EQ(log, all_in_order);
}

TEST(SolverOwnership, EndsWhenItsLastSolverIsAssignedTo) {
  Log log;
  auto solver = solver_with_functions(log);
  const Linear_taylor_solver copy = *solver;
  *solver = Linear_taylor_solver();
  EXPECT_TRUE(log.empty());
  {
    auto only_owner = solver_with_functions(log);
    *only_owner = copy;
    EXPECT_EQ(log, all_in_order);
  }
  EXPECT_EQ(log, all_in_order);
}

TEST(SolverOwnership, SurvivesAssignmentToItself) {
  Log log;
  auto solver = solver_with_functions(log);
  const Linear_taylor_solver& itself = *solver;
  *solver = itself;
  EXPECT_TRUE(log.empty());
  solver.reset();
  EXPECT_EQ(log, all_in_order);
}

TEST(SolverOwnership, OfWhatASetterReplacesGoesBackToTheCaller) {
  Log log;
  const auto f = std::make_unique<Logged_objective>(log, "f");
  const auto g = std::make_unique<Logged_jacobian>(log, "g");
  {
    Linear_taylor_solver solver;
    solver.set_funcs({f.get()});
    solver.set_grad_funcs({g.get()});
    solver.set_funcs({});
    solver.set_grad_funcs({new Logged_jacobian(log, "h")});
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"h", "h base"}));
}

TEST(SolverOwnership, AllowsTheSameAndOverlappingLists) {
  Log log;
  auto solver = solver_with_functions(log);
  solver->set_funcs(solver->get_funcs());
  solver->set_grad_funcs(solver->get_grad_funcs());
  fw::Opt_func* f1 = solver->get_funcs()[2];
  const std::unique_ptr<fw::Opt_func> f0(solver->get_funcs()[0]);
  solver->set_funcs({new Logged_objective(log, "f2"), f1, f1});
  EXPECT_TRUE(log.empty());
  solver.reset();
  EXPECT_EQ(log, (Log{"f2", "f1", "g0", "g0 base", "g1", "g1 base"}));
}

TEST(SolverCopy, TakesEverySettingOver) {
  Linear_taylor_solver source;
  source.set_num_dimensions(2);
  source.set_num_equations(3);
  source.set_max_iters(4);
  source.set_min_x_step(0.5F);
  source.set_min_y_step(0.25F);
  source.set_decreasing_step_size(true);
  source.set_finite_difference_steps({{1.0}});
  Linear_taylor_solver assigned;
  assigned = source;
  for (const Linear_taylor_solver& copy : {Linear_taylor_solver(source), assigned}) {
    EXPECT_EQ(copy.get_num_dimensions(), 2);
    EXPECT_EQ(copy.get_num_equations(), 3);
    EXPECT_EQ(copy.get_max_iters(), 4);
    EXPECT_EQ(copy.get_min_x_step(), 0.5F);
    EXPECT_EQ(copy.get_min_y_step(), 0.25F);
    EXPECT_EQ(copy.get_finite_difference_steps(), source.get_finite_difference_steps());
  }
}

}  // namespace
