// SPDX-License-Identifier: BSD-3-Clause
// The goals and how each is judged.
#include "benchmarks/goals.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <optional>
#include <ostream>

#include "benchmarks/markdown.h"
#include "benchmarks/module_call.h"

namespace bench {
namespace {

/// The number that a goal limits, where this contest has one.
using Measure = std::function<std::optional<double>(const Contest&)>;

struct Goal {
  std::string what;
  std::vector<int> types;
  bool by_differences;
  int min_points;
  int max_points;
  double limit;
  Measure measure;
};

constexpr int no_limit = std::numeric_limits<int>::max();

/// Of as many iterations as the peer's ten.
Measure ratio_to(const std::string& peer) {
  return [peer](const Contest& contest) -> std::optional<double> {
    const Result* other = contest.find(peer);
    if (other == nullptr) return std::nullopt;
    return median_ratio(*contest.find("kelvane"), *other) * 10 / contest.task.num_iterations();
  };
}

/// Of the same calls.
std::optional<double> ratio_to_other(const Contest& contest) {
  const Result* other = contest.find("other");
  if (other == nullptr) return std::nullopt;
  return median_ratio(*contest.find("kelvane"), *other);
}

std::optional<double> growth(const Contest& contest) { return growth_per_point(1000, contest.num_points); }

std::vector<Goal> goals() {
  const Measure to_tiny_solver = ratio_to("TinySolver");
  const std::vector<int> hybrids = {-1, -2, -3};
  return {
      {"type 0 to TinySolver, N = 6", {0}, false, 6, 6, 0.60, to_tiny_solver},
      {"type 0 to TinySolver, N = 10", {0}, false, 10, 10, 0.55, to_tiny_solver},
      {"type 0 to TinySolver, N = 20", {0}, false, 20, 20, 0.44, to_tiny_solver},
      {"type 0 to TinySolver, N = 50", {0}, false, 50, 50, 0.36, to_tiny_solver},
      {"type 0 to TinySolver, N = 100", {0}, false, 100, 300, 0.32, to_tiny_solver},
      {"type 0 to TinySolver, N from 1,000", {0}, false, 1000, no_limit, 0.28, to_tiny_solver},
      {"types 1 and 2, ten calls to TinySolver, N = 100", {1, 2}, false, 100, 100, 0.80, to_tiny_solver},
      {"types 1 and 2, ten calls to TinySolver, N = 10,000", {1, 2}, false, 10000, 10000, 0.42, to_tiny_solver},
      {"hybrids, ten calls to TinySolver, N = 100", hybrids, false, 100, 100, 0.80, to_tiny_solver},
      {"hybrids, ten calls to TinySolver, N = 10,000", hybrids, false, 10000, 10000, 0.60, to_tiny_solver},
      {"type 0 by differences to the other module, N = 10,000", {0}, true, 10000, 10000, 0.7, ratio_to_other},
      {"type 0 to solvePnPRefineLM", {0}, false, 0, no_limit, 0.1, ratio_to("solvePnPRefineLM")},
      {"type 0, time per point at 100,000 to that at 1,000", {0}, false, 100000, no_limit, 1.5, growth},
  };
}

bool concerns(const Goal& goal, const Contest& contest) {
  const bool is_of_type = std::find(goal.types.begin(), goal.types.end(), contest.task.type) != goal.types.end();
  return is_of_type && contest.task.by_differences == goal.by_differences && contest.num_points >= goal.min_points &&
         contest.num_points <= goal.max_points;
}

void add_row(const Goal& goal, const std::vector<Contest>& contests, Table& table) {
  std::optional<double> worst;
  int worst_points = 0;
  for (const Contest& contest : contests) {
    const std::optional<double> value = concerns(goal, contest) ? goal.measure(contest) : std::nullopt;
    if (!value || (worst && *value <= *worst)) continue;
    worst = value;
    worst_points = contest.num_points;
  }
  if (!worst) return;
  table.add({goal.what, number(goal.limit), number(*worst), std::to_string(worst_points),
             *worst <= goal.limit ? "reached" : "missed"});
}

}  // namespace

void print_goals(const std::vector<Contest>& contests, std::ostream& out) {
  Table table({"time of", "at most", "worst", "at N", ""});
  for (const Goal& goal : goals()) add_row(goal, contests, table);
  out << "### Goals\n\n";
  table.print(out);
}

}  // namespace bench
