// SPDX-License-Identifier: BSD-3-Clause
// memory_per_point: prints how many bytes a point costs in a call, beyond the input arrays.
#include <iostream>
#include <string>

#include "benchmarks/counting_malloc.h"
#include "benchmarks/literal_reference.h"
#include "benchmarks/markdown.h"
#include "benchmarks/module_call.h"

namespace {

using namespace bench;

double bytes_per_point(const Entry& entry, int type) {
  constexpr int num_points = 100000;
  const Scene few = random_scene(6, 1);
  const Scene many = random_scene(num_points, 1);
  entry.make(few, type)->refine();  // what libraries keep from their first call on
  const auto competitor = entry.make(many, type);
  return static_cast<double>(peak_bytes([&competitor] { competitor->refine(); })) / num_points;
}

std::string limit(int type) {
  if (type == 0) return "260";
  return type == -2 ? "1000" : "-";
}

}  // namespace

int main() {
  cv::setNumThreads(1);
  Table table({"type", "kelvane", "goal", "literal"});
  for (const int type : {0, 1, 2, 10, -2}) {
    table.add({std::to_string(type), number(bytes_per_point(module_call(), type)), limit(type),
               number(bytes_per_point(literal_reference(), type))});
  }
  std::cout
      << "## Memory\n\nHeap bytes per point at the highest moment of a call, without the inputs, N = 100,000:\n\n";
  table.print(std::cout);
}
