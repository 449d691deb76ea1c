// SPDX-License-Identifier: BSD-3-Clause
// refinement_benchmark [--quick] CHART_DATA: times whole refinements, prints tables, writes the data of the chart.
#include <fstream>
#include <iostream>
#include <string>

#include "benchmarks/goals.h"
#include "benchmarks/literal_reference.h"
#include "benchmarks/markdown.h"
#include "benchmarks/module_call.h"
#include "benchmarks/peers/peers.h"
#include "benchmarks/report.h"

namespace {

using namespace bench;

constexpr int single_step_types[] = {-2, 1, 2, 10};

struct Plan {
  std::vector<int> sizes;
  Effort race;
  Effort single_step;
};

const Plan full{{6, 10, 20, 50, 100, 300, 1000, 3000, 10000, 30000, 100000}, {4.5, 7}, {0.7, 15}};
const Plan quick{{6, 20, 100, 1000, 10000}, {0.5, 3}, {0.1, 3}};

std::vector<Contest> hold_all(const Plan& plan) {
  const std::vector<Entry> pair{module_call(), literal_reference()};
  std::vector<Entry> race = pair;
  for (const Entry& peer : found_peers()) race.push_back(peer);

  std::vector<Contest> contests;
  for (const int num_points : plan.sizes) {
    std::cerr << "N = " << num_points << '\n';
    contests.push_back(hold_contest(race, 0, num_points, plan.race));
    for (const int type : single_step_types) {
      contests.push_back(hold_contest(pair, type, num_points, plan.single_step));
    }
  }
  return contests;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.empty()) {
    std::cerr << "refinement_benchmark [--quick] CHART_DATA\n";
    return 2;
  }
  cv::setNumThreads(1);
  for (const std::string& sentence : missing_peers()) std::cout << sentence << "\n\n";
  const std::vector<Contest> contests = hold_all(arguments[0] == "--quick" ? quick : full);
  print_goals(contests, std::cout);
  print_race(contests, std::cout);
  print_single_steps(contests, std::cout);
  std::cout << "The stand-in host takes " << number(host_ns())
            << " ns of a call of type 0: every question about every input, and the output made and freed.\n\n";
  std::ofstream chart_data(arguments.back());
  write_chart_data(contests, chart_data);
  return chart_data.flush() ? 0 : 1;
}
