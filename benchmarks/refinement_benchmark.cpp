// SPDX-License-Identifier: BSD-3-Clause
// refinement_benchmark [--quick] [--against MODULE] CHART_DATA: times whole refinements, prints tables, writes the data
// of the chart. MODULE is another build of the module, for a host: its calls are timed in turn with our own.
#include <fstream>
#include <iostream>
#include <string>

#include "benchmarks/framework_classes.h"
#include "benchmarks/goals.h"
#include "benchmarks/markdown.h"
#include "benchmarks/module_call.h"
#include "benchmarks/peers/peers.h"
#include "benchmarks/report.h"

namespace {

using namespace bench;

const std::vector<Task> calls = {{1, false}, {2, false}, {-1, false}, {-2, false}, {-3, false}, {10, false}, {0, true}};

struct Plan {
  std::vector<int> sizes;
  Effort race;
  Effort call;
};

const Plan full{{6, 10, 20, 50, 100, 300, 1000, 3000, 10000, 30000, 100000}, {4.5, 7}, {0.7, 15}};
const Plan quick{{6, 10, 20, 50, 100, 1000, 10000}, {0.5, 3}, {0.2, 5}};

std::vector<Contest> hold_all(const Plan& plan, const std::vector<Entry>& others) {
  std::vector<Entry> few{module_call()};
  few.insert(few.end(), others.begin(), others.end());
  std::vector<Entry> race = few;
  race.push_back(framework());
  race.push_back(literal());
  few.push_back(framework());
  for (const Entry& peer : found_peers()) {
    race.push_back(peer);
    if (peer.name == "TinySolver") few.push_back(peer);
  }

  std::vector<Contest> contests;
  for (const int num_points : plan.sizes) {
    std::cerr << "N = " << num_points << '\n';
    contests.push_back(hold_contest(race, {}, num_points, plan.race));
    for (const Task& task : calls) contests.push_back(hold_contest(few, task, num_points, plan.call));
  }
  return contests;
}

int usage() {
  std::cerr << "refinement_benchmark [--quick] [--against MODULE] CHART_DATA\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  Plan plan = full;
  std::vector<Entry> others;
  std::size_t i = 0;
  for (; i < arguments.size() && arguments[i].rfind("--", 0) == 0; ++i) {
    if (arguments[i] == "--quick") {
      plan = quick;
    } else if (arguments[i] == "--against" && i + 1 < arguments.size()) {
      others.push_back(other_module_call(arguments[++i]));
    } else {
      return usage();
    }
  }
  if (i + 1 != arguments.size()) return usage();
  cv::setNumThreads(1);
  for (const std::string& sentence : missing_peers()) std::cout << sentence << "\n\n";
  const std::vector<Contest> contests = hold_all(plan, others);
  print_goals(contests, std::cout);
  print_race(contests, std::cout);
  std::cout << "## Other calls\n\nOne iteration in a call; by differences three.\n\n";
  for (const Task& task : calls) print_calls(contests, task, std::cout);
  std::cout << "The stand-in host takes " << number(host_ns())
            << " ns of a call of type 0: every question about every input, and the output made and freed.\n\n";
  std::ofstream chart_data(arguments.back());
  write_chart_data(contests, chart_data);
  return chart_data.flush() ? 0 : 1;
}
