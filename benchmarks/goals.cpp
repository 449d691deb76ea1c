// SPDX-License-Identifier: BSD-3-Clause
// The goals and how each is judged.
#include "benchmarks/goals.h"

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
  int type;
  int min_points;
  int max_points;
  double limit;
  Measure measure;
};

constexpr int no_limit = std::numeric_limits<int>::max();

Measure ratio_to(const std::string& peer) {
  return [peer](const Contest& contest) -> std::optional<double> {
    const Result* other = contest.find(peer);
    if (other == nullptr) return std::nullopt;
    return median_ratio(*contest.find("kelvane"), *other);
  };
}

std::optional<double> ns_per_point(const Contest& contest) { return contest.ns_per_point(*contest.find("kelvane")); }

std::optional<double> growth(const Contest& contest) { return growth_per_point(1000, contest.num_points); }

std::vector<Goal> goals() {
  return {
      {"type 0, time relative to TinySolver, N from 20", 0, 20, no_limit, 0.5, ratio_to("TinySolver")},
      {"type 0, time relative to TinySolver, N = 6 and 10", 0, 6, 10, 0.9, ratio_to("TinySolver")},
      {"type 0, time relative to solvePnPRefineLM", 0, 0, no_limit, 0.1, ratio_to("solvePnPRefineLM")},
      {"type 1, time relative to the literal reference, N from 100", 1, 100, no_limit, 0.35, ratio_to("literal")},
      {"type 2, time relative to the literal reference, N from 100", 2, 100, no_limit, 0.35, ratio_to("literal")},
      {"type 0, ns per point and iteration, N from 1,000", 0, 1000, no_limit, 12, ns_per_point},
      {"type 0, time per point at 100,000 relative to 1,000", 0, 100000, no_limit, 1.5, growth},
  };
}

void add_row(const Goal& goal, const std::vector<Contest>& contests, Table& table) {
  std::optional<double> worst;
  int worst_points = 0;
  for (const Contest& contest : contests) {
    const bool is_concerned =
        contest.type == goal.type && contest.num_points >= goal.min_points && contest.num_points <= goal.max_points;
    const std::optional<double> value = is_concerned ? goal.measure(contest) : std::nullopt;
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
  Table table({"goal", "at most", "worst", "at N", ""});
  for (const Goal& goal : goals()) add_row(goal, contests, table);
  out << "### Goals\n\n";
  table.print(out);
}

}  // namespace bench
