// SPDX-License-Identifier: BSD-3-Clause
// Tables with a row for each number of points.
#include "benchmarks/report.h"

#include <functional>
#include <iomanip>
#include <ostream>
#include <set>
#include <string>

#include "benchmarks/markdown.h"

namespace bench {
namespace {

using Cell = std::function<std::string(const Contest&, const Result&)>;

std::vector<const Contest*> of_type(const std::vector<Contest>& contests, int type) {
  std::vector<const Contest*> chosen;
  for (const Contest& contest : contests) {
    if (contest.type == type) chosen.push_back(&contest);
  }
  return chosen;
}

/// A column for each competitor.
void print_by_competitor(const char* title, const std::vector<const Contest*>& contests, const Cell& cell,
                         std::ostream& out) {
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

/// A column for each type but 0; the cell is asked about our own result.
void print_by_type(const char* title, const std::vector<Contest>& contests, const Cell& cell, std::ostream& out) {
  std::set<int> types;
  for (const Contest& contest : contests) types.insert(contest.type);
  types.erase(0);
  std::vector<std::string> header{"N"};
  for (const int type : types) header.push_back("type " + std::to_string(type));
  Table table(header);
  for (const Contest* first : of_type(contests, *types.begin())) {
    std::vector<std::string> row{std::to_string(first->num_points)};
    for (const Contest& contest : contests) {
      if (contest.type == 0 || contest.num_points != first->num_points) continue;
      row.push_back(cell(contest, *contest.find("kelvane")));
    }
    table.add(row);
  }
  out << title << "\n\n";
  table.print(out);
}

std::string ns(const Contest& contest, const Result& result) { return number(contest.ns_per_point(result)); }

std::string ratio_to_literal(const Contest& contest, const Result& result) {
  return number(median_ratio(result, *contest.find("literal")));
}

std::string our_ratio(const Contest& contest, const Result& result) {
  return number(median_ratio(*contest.find("kelvane"), result));
}

std::string difference_from_literal(const Contest& contest, const Result& result) {
  return number(largest_difference(result, *contest.find("literal")));
}

std::string both_rms(const Contest& contest, const Result& result) {
  return number(result.rms) + " / " + number(contest.find("literal")->rms);
}

}  // namespace

void print_race(const std::vector<Contest>& contests, std::ostream& out) {
  const auto race = of_type(contests, 0);
  out << "## Type 0, ten iterations\n\n";
  print_by_competitor("Nanoseconds per point and iteration:", race, ns, out);
  print_by_competitor("Time of kelvane relative to each competitor:", race, our_ratio, out);
  print_by_competitor("Time of each competitor relative to the literal reference:", race, ratio_to_literal, out);
  print_by_competitor(
      "RMS reached, in pixels:", race, [](const Contest&, const Result& r) { return std::to_string(r.rms); }, out);
  print_by_competitor("Largest difference of a parameter from the literal reference:", race, difference_from_literal,
                      out);
  print_by_competitor(
      "Jacobians evaluated in a refinement, where that can be seen:", race,
      [](const Contest&, const Result& r) { return r.num_jacobians > 0 ? number(r.num_jacobians) : "-"; }, out);
}

void print_single_steps(const std::vector<Contest>& contests, std::ostream& out) {
  out << "## Other types, one iteration in a call\n\n";
  print_by_type("Nanoseconds per point:", contests, ns, out);
  print_by_type("Time of kelvane relative to the literal reference:", contests, ratio_to_literal, out);
  print_by_type("RMS after the iteration, kelvane / literal, in pixels (type 10: units of its equations):", contests,
                both_rms, out);
  print_by_type("Largest difference of a parameter from the literal reference:", contests, difference_from_literal,
                out);
}

void write_chart_data(const std::vector<Contest>& contests, std::ostream& out) {
  const auto race = of_type(contests, 0);
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
