// SPDX-License-Identifier: BSD-3-Clause
// Tables with a row for each number of points.
#include "benchmarks/report.h"

#include <functional>
#include <iomanip>
#include <ostream>
#include <string>

#include "benchmarks/markdown.h"

namespace bench {
namespace {

using Cell = std::function<std::string(const Contest&, const Result&)>;

std::vector<const Contest*> of_task(const std::vector<Contest>& contests, const Task& task) {
  std::vector<const Contest*> chosen;
  for (const Contest& contest : contests) {
    if (contest.task == task) chosen.push_back(&contest);
  }
  return chosen;
}

/// A column for each competitor.
void print_table(const char* title, const std::vector<const Contest*>& contests, const Cell& cell, std::ostream& out) {
  std::vector<std::string> header{"N"};
  for (const Result& result : contests[0]->results) header.push_back(result.name);
  Table table(header);
  for (const Contest* contest : contests) {
    std::vector<std::string> row{std::to_string(contest->num_points)};
    for (const Result& result : contest->results) row.push_back(cell(*contest, result));
    table.add(row);
  }
  out << title << "\n\n";
  table.print(out);
}

std::string ns(const Contest& contest, const Result& result) { return number(contest.ns_per_point(result)); }

/// Per iteration, as TinySolver makes ten in a call.
std::string our_ratio(const Contest& contest, const Result& result) {
  const bool makes_ten = result.name == "TinySolver";
  const double factor = makes_ten ? 10.0 / contest.task.num_iterations() : 1.0;
  return number(factor * median_ratio(*contest.find("kelvane"), result));
}

}  // namespace

void print_race(const std::vector<Contest>& contests, std::ostream& out) {
  const auto race = of_task(contests, {});
  out << "## Type 0, ten iterations\n\n";
  print_table("Nanoseconds per point and iteration:", race, ns, out);
  print_table("Time of kelvane relative to each competitor:", race, our_ratio, out);
  print_table(
      "RMS reached, in pixels:", race, [](const Contest&, const Result& r) { return std::to_string(r.rms); }, out);
  print_table(
      "Largest difference of a parameter from the literal reference:", race,
      [](const Contest& contest, const Result& r) { return number(largest_difference(r, *contest.find("literal"))); },
      out);
  print_table(
      "Jacobians evaluated in a refinement, where that can be seen:", race,
      [](const Contest&, const Result& r) { return r.num_jacobians > 0 ? number(r.num_jacobians) : "-"; }, out);
}

void print_calls(const std::vector<Contest>& contests, const Task& task, std::ostream& out) {
  const auto chosen = of_task(contests, task);
  if (chosen.empty()) return;
  const std::string title = "Type " + std::to_string(task.type) + (task.by_differences ? " by differences" : "") +
                            ", time per iteration relative to each competitor's:";
  print_table(title.c_str(), chosen, our_ratio, out);
}

void write_chart_data(const std::vector<Contest>& contests, std::ostream& out) {
  const auto race = of_task(contests, {});
  out << "N";
  for (const Result& result : race[0]->results) out << ' ' << std::quoted(result.name);
  out << '\n';
  for (const Contest* contest : race) {
    out << contest->num_points;
    for (const Result& result : contest->results) out << ' ' << contest->ns_per_point(result);
    out << '\n';
  }
}

}  // namespace bench
