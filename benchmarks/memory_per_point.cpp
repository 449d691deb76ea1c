// SPDX-License-Identifier: BSD-3-Clause
// memory_per_point: prints how many bytes a point costs in a call, beyond the input arrays.
#include <iostream>
#include <string>

#include "benchmarks/counting_malloc.h"
#include "benchmarks/framework_classes.h"
#include "benchmarks/markdown.h"
#include "benchmarks/module_call.h"

namespace {

using namespace bench;

double bytes_per_point(const Entry& entry, const Task& task) {
  constexpr int num_points = 100000;
  const Scene few = random_scene(6, 1);
  const Scene many = random_scene(num_points, 1);
  entry.make(few, task)->refine();  // what libraries keep from their first call on
  const auto competitor = entry.make(many, task);
  return static_cast<double>(peak_bytes([&competitor] { competitor->refine(); })) / num_points;
}

}  // namespace

int main() {
  cv::setNumThreads(1);
  Table table({"type", "kelvane", "framework", "literal"});
  for (const Task& task : {Task{0, false}, Task{0, true}, Task{1, false}, Task{10, false}, Task{-2, false}}) {
    const auto bytes = [&task](const Entry& entry) { return number(bytes_per_point(entry, task)); };
    table.add({std::to_string(task.type) + (task.by_differences ? ", differences" : ""), bytes(module_call()),
               bytes(framework()), task.by_differences ? "-" : bytes(literal())});
  }
  std::cout
      << "## Memory\n\nHeap bytes per point at the highest moment of a call, without the inputs, N = 100,000:\n\n";
  table.print(std::cout);
}
