// SPDX-License-Identifier: BSD-3-Clause
// Finite differences of the prediction as a refinement sets them up, to the last bit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <opencv2/core.hpp>
#include <utility>

#include "camera_pose/rotation_type.h"
#include "fw_opt/linear_taylor_solver.h"
#include "fw_opt/matrix_rows.h"
#include "pose_refinement/refinement.h"
#include "support/cases.h"
#include "support/fake_input.h"

namespace {

using pose_refinement::Arguments;
using pose_refinement::Problem;
using support::Case;

using Points = std::vector<std::vector<double>>;

constexpr std::uint64_t seed = 271828;
constexpr std::uint64_t num_cases = 40;

/// Passes every evaluation on and remembers where it was.
class Recording_objective : public fw::Opt_func {
 public:
  Recording_objective(fw::Opt_func* recorded, Points& where) : objective(recorded), visited(where) {}
  std::vector<double> operator()(const std::vector<double>& x) const override {
    visited.push_back(x);
    return (*objective)(x);
  }

 private:
  std::unique_ptr<fw::Opt_func> objective;
  Points& visited;
};

/// What a call leads to: its containers and a solver that holds its objective.
struct Set_up {
  Problem problem;
  fw::Linear_taylor_solver solver;

  explicit Set_up(const Arguments& arguments) : problem(arguments) {
    pose_refinement::configure(solver, problem, pose_refinement::Settings(arguments));
    pose_refinement::add_objective(solver, problem);
  }
};

/// A call in finite-difference mode: four points before a camera close to the world's axes, and observations that no
/// pose explains.
Set_up random_set_up(int type, Case& which) {
  const Rotation_type& row = *find_rotation_type(type);
  std::vector<double> camera = which.random.vector_in_cube(static_cast<std::size_t>(row.num_dimensions()), 0.5);
  if (row.rotation_size() == 4) camera[3] += 1.0;
  for (const double k : row.is_bearing() ? std::vector<double>{1, 0, 0} : std::vector<double>{700, 320, 240}) {
    camera.push_back(k);
  }
  std::vector<double> points;
  std::vector<double> observations;
  for (int i = 0; i < 4; ++i) {
    for (const double range : {2.0, 2.0}) points.push_back(which.random.uniform(-range, range));
    points.push_back(which.random.uniform(6.0, 9.0));
    for (int k = 0; k < row.observation_size; ++k) observations.push_back(which.random.uniform(-2.0, 2.0));
  }
  support::Fake_call call(type);
  call.with(1, support::fake_row(camera)).with(2, {3, 4, points});
  call.with(3, {static_cast<std::size_t>(row.observation_size), 4, observations});
  call.with(4, support::fake_row({1, 0, -1e9, 1}));
  return Set_up(call.keep(5).check());
}

/// (f(x + h e_d) - f(x)) / h, column by column, with x restored by subtraction.
struct Differences {
  cv::Mat J, b;
  Points visited;

  explicit Differences(const Set_up& set_up) {
    const Problem& problem = set_up.problem;
    const fw::Opt_func& f = *set_up.solver.get_funcs().at(0);
    const std::vector<double> h = set_up.solver.get_finite_difference_steps().at(0);
    const std::vector<double> at_start = f(problem.x0);
    visited.push_back(problem.x0);
    J.create(static_cast<int>(at_start.size()), static_cast<int>(h.size()), CV_64F);
    b.create(J.rows, 1, CV_64F);
    for (int i = 0; i < b.rows; ++i) {
      const auto k = static_cast<std::size_t>(i);
      b.at<double>(i) = problem.target[k] - at_start[k];
    }
    std::vector<double> x = problem.x0;
    for (std::size_t d = 0; d < h.size(); ++d) {
      x[d] += h[d];
      visited.push_back(x);
      const std::vector<double> moved = f(x);
      for (std::size_t i = 0; i < moved.size(); ++i) {
        J.at<double>(static_cast<int>(i), static_cast<int>(d)) = (moved[i] - at_start[i]) / h[d];
      }
      x[d] -= h[d];
    }
  }
};

std::vector<double> stepped(const std::vector<double>& x0, const cv::Mat& J, const cv::Mat& b) {
  const auto n = static_cast<std::size_t>(J.cols);
  std::vector<double> dx(n);
  fw::Matrix_rows rows(J, b);
  fw::Least_squares least_squares;
  least_squares.reduce(rows, n);
  least_squares.solve(rows, n, static_cast<std::size_t>(J.rows), dx.data());
  std::vector<double> x = x0;
  for (std::size_t d = 0; d < n; ++d) x[d] += dx[d];
  return x;
}

class DifferenceRows : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(AllTypes, DifferenceRows, testing::Values(0, 1, 2, 3, 10, 11, 12, -1, -2, -3));

TEST_P(DifferenceRows, MakeTheStepThatTheFormulaMakes) {
  for (std::uint64_t number = 0; number < num_cases; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    Set_up set_up = random_set_up(GetParam(), which);
    auto& [problem, solver] = set_up;
    const Differences expected(set_up);
    solver.reset();
    std::vector<double> x = problem.x0;
    double err = 0.0;
    solver.inner_optimise(x, problem.target, x, err, 0);
    ASSERT_EQ(x, stepped(problem.x0, expected.J, expected.b));
  }
}

TEST_P(DifferenceRows, WouldShowASingleBitInTheStep) {
  int num_seen = 0;
  int num_entries = 0;
  for (std::uint64_t number = 0; number < 5; ++number) {
    Case which(seed, number);
    const Set_up set_up = random_set_up(GetParam(), which);
    Differences differed(set_up);
    const Problem& problem = set_up.problem;
    const std::vector<double> expected = stepped(problem.x0, differed.J, differed.b);
    for (auto entry = differed.J.begin<double>(); entry != differed.J.end<double>(); ++entry) {
      const double kept = std::exchange(*entry, std::nextafter(*entry, std::numeric_limits<double>::infinity()));
      num_seen += stepped(problem.x0, differed.J, differed.b) != expected ? 1 : 0;
      ++num_entries;
      *entry = kept;
    }
  }
  EXPECT_GT(num_seen, num_entries / 2) << "of " << num_entries << " entries";
}

TEST_P(DifferenceRows, RestoreEachEntryBySubtraction) {
  bool has_kept_a_rounding = false;
  for (std::uint64_t number = 0; number < num_cases; ++number) {
    Case which(seed, number);
    SCOPED_TRACE(which);
    Set_up set_up = random_set_up(GetParam(), which);
    auto& [problem, solver] = set_up;
    const Differences expected(set_up);
    Points visited;
    // The setter deletes nothing, so the objective that it drops is free for the new one to own.
    solver.set_funcs({new Recording_objective(solver.get_funcs().at(0), visited)});
    solver.reset();
    std::vector<double> x = problem.x0;
    double err = 0.0;
    solver.inner_optimise(x, problem.target, x, err, 0);
    ASSERT_EQ(visited.size(), problem.x0.size() + 2);  // the start, a step in each entry, the new point
    EXPECT_EQ(visited.back(), x);
    visited.pop_back();
    ASSERT_EQ(visited, expected.visited);
    for (std::size_t d = 0; d + 1 < problem.x0.size(); ++d) {
      has_kept_a_rounding = has_kept_a_rounding || visited.back()[d] != problem.x0[d];
    }
  }
  EXPECT_TRUE(has_kept_a_rounding) << "no case tells subtraction from a copy";
}

}  // namespace
