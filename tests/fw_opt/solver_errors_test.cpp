// SPDX-License-Identifier: BSD-3-Clause
// The reports of the solver frame: its checks, their order, and the context it adds.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/foreign_locale.h"
#include "support/functions.h"
#include "support/matchers.h"
#include "support/scripted_solver.h"

namespace {

using support::Caught;
using support::caught_by;
using support::Scripted_solver;
using support::Vector;

std::string block(int line, const std::string& details, int level = 0) {
  return support::block("fw_opt/solver.cpp", line,
                        line == 18 ? support::optimise_from_start_signature : support::optimise_signature, details,
                        level);
}

void set_two_functions_and_one_step_vector(fw::Solver& solver) {
  const support::Map identity = [](const Vector& x) { return x; };
  solver.set_funcs({new support::Objective(identity), new support::Objective(identity)});
  solver.set_finite_difference_steps({{1e-3}});
}

const std::string functions_and_steps_differ =
    block(30, "function vector had size 2 but finite difference vector had size 1");

TEST(SolverReport, TellsThatFunctionsAndStepVectorsDifferInNumber) {
  Scripted_solver solver({{{1.0}, 0.0}});
  set_two_functions_and_one_step_vector(solver);
  const Caught caught = caught_by([&] { solver.optimise({0.0}, {}); });
  EXPECT_EQ(caught.text, functions_and_steps_differ);
  EXPECT_EQ(caught.level, 0);
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset"}));
}

TEST(SolverReport, TellsOfStepVectorsWithoutFunctions) {
  Scripted_solver solver({{{1.0}, 0.0}});
  solver.set_finite_difference_steps({{}, {}, {}});
  EXPECT_EQ(caught_by([&] { solver.optimise({0.0}, {}); }).text,
            block(30, "function vector had size 0 but finite difference vector had size 3"));
}

TEST(SolverReport, ListsATargetOfTheWrongLength) {
  Scripted_solver solver({{{1.0}, 0.0}});
  solver.set_num_equations(12);
  const Caught caught = caught_by([&] { solver.optimise({0.0}, {1, -2.5, 3, 4, 5, 6, 7, 8, 9, 1e20, 1.0 / 3}); });
  EXPECT_EQ(caught.text, block(33,
                               "Passed target was  Size: 11 { 1 -2.5 3 4 5 6 7 8 9 1e+20 0.333333 }  but expected "
                               "12 equations"));
  EXPECT_EQ(caught.level, 0);
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset"}));
}

TEST(SolverReport, IsWrittenInTheClassicLocale) {
  Scripted_solver solver({{{1.0}, 0.0}});
  solver.set_num_equations(12345);
  const support::Foreign_locale foreign;
  EXPECT_EQ(caught_by([&] {
              solver.optimise({0.0}, {1234567, 0.5});
            }).text,
            block(33, "Passed target was  Size: 2 { 1.23457e+06 0.5 }  but expected 12345 equations"));
}

TEST(SolverReport, IsNeverCutShort) {
  Scripted_solver solver({{{1.0}, 0.0}});
  std::string listed;
  for (int i = 0; i < 20000; ++i) listed += "0.125 ";
  EXPECT_EQ(caught_by([&] { solver.optimise({0.0}, Vector(20000, 0.125)); }).text,
            block(33, "Passed target was  Size: 20000 { " + listed + "}  but expected 0 equations"));
}

TEST(SolverReport, ComesFromTheStepVectorsBeforeTheTargetIsLookedAt) {
  Scripted_solver solver({{{1.0}, 0.0}});
  set_two_functions_and_one_step_vector(solver);
  solver.set_num_equations(12);
  EXPECT_EQ(caught_by([&] { solver.optimise({0.0}, Vector(11)); }).text, functions_and_steps_differ);
}

TEST(SolverReport, ComesFromTheChecksAlsoWithoutIterations) {
  Scripted_solver solver({});
  solver.set_num_equations(1);
  EXPECT_EQ(caught_by([&] { solver.optimise({0.0}, {}); }).text,
            block(33, "Passed target was  Size: 0 { }  but expected 1 equations"));
  set_two_functions_and_one_step_vector(solver);
  EXPECT_EQ(caught_by([&] { solver.optimise({0.0}, {0.0}); }).text, functions_and_steps_differ);
  EXPECT_EQ(solver.calls, (std::vector<std::string>{"reset", "reset"}));
}

TEST(SolverReport, GetsTheContextOfTheEntryWithAStartOnly) {
  Scripted_solver solver({{{1.0}, 0.0}});
  set_two_functions_and_one_step_vector(solver);
  for (const auto& entry :
       std::vector<std::function<void()>>{[&] { solver.optimise(Vector{0.0}); }, [&] { solver.optimise(); }}) {
    const Caught caught = caught_by(entry);
    EXPECT_EQ(caught.text, block(18, "", 1) + functions_and_steps_differ + "\n");
    EXPECT_EQ(caught.level, 1);
  }
}

TEST(SolverReport, GetsTheContextOfTheLoop) {
  Scripted_solver solver({{{1.0}, 0.0}});
  solver.failure = [] { throw fw::exception_l("inside\n", 4); };
  Caught caught = caught_by([&] { solver.optimise({0.0}, {}); });
  EXPECT_EQ(caught.text, block(80, "", 5) + "inside\n\n");
  EXPECT_EQ(caught.level, 5);
  caught = caught_by([&] { solver.optimise(Vector{0.0}); });
  EXPECT_EQ(caught.text, block(18, "", 6) + block(80, "", 5) + "inside\n\n\n");
  EXPECT_EQ(caught.level, 6);
}

TEST(SolverReport, StartsAtLevelZeroForAnotherLibrarysException) {
  Scripted_solver solver({{{1.0}, 0.0}});
  solver.failure = [] { throw std::runtime_error("library"); };
  Caught caught = caught_by([&] { solver.optimise({0.0}, {}); });
  EXPECT_EQ(caught.text, block(80, "") + "library\n");
  EXPECT_EQ(caught.level, 0);
  caught = caught_by([&] { solver.optimise(Vector{0.0}); });
  EXPECT_EQ(caught.text, block(18, "", 1) + block(80, "") + "library\n\n");
  EXPECT_EQ(caught.level, 1);
}

const std::string changed_length =
    block(80, "", 1) +
    support::block("fw_tools/std_vector_overloads.h", 302,
                   "const std::vector<_Tp> fw::operator-(const std::vector<_Tp>&, const std::vector<_Tp>&) [with T = "
                   "double]",
                   "size mismatch. vec1 had size 1 but vec2 had size 2") +
    "\n";

TEST(SolverReport, TellsThatAnIterationChangedTheLengthOfThePoint) {
  Scripted_solver solver({{{1.0, 2.0}, 0.0}, {{1.0, 2.0}, 0.0}});
  const Caught caught = caught_by([&] { solver.optimise({0.0}, {}); });
  EXPECT_EQ(caught.text, changed_length);
  EXPECT_EQ(caught.level, 1);
}

TEST(SolverReport, IsNotMadeOfTheLengthWhenASingleIterationIsAllowed) {
  Scripted_solver solver({{{1.0, 2.0}, 0.0}});
  EXPECT_EQ(solver.optimise({0.0}, {}), (Vector{1.0, 2.0}));
}

}  // namespace
