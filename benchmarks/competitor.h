// SPDX-License-Identifier: BSD-3-Clause
// What a contest asks of everyone who takes part.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/scene.h"

namespace bench {

/// What a call is asked to do.
struct Task {
  int type = 0;
  bool by_differences = false;

  bool operator==(const Task& other) const { return type == other.type && by_differences == other.by_differences; }
  /// Without criteria a call of type 0 makes ten iterations. Every other type needs criteria, and so do differences:
  /// one iteration, for type 0 three.
  int num_iterations() const { return type != 0 ? 1 : by_differences ? 3 : 10; }
};

/// One solver with one problem, prepared so that only refine() has to be timed.
class Competitor {
 public:
  virtual ~Competitor() = default;

  /// One refinement, always from the scene's start.
  virtual void refine() = 0;
  /// The search vector, in the layout of the type, that the last refinement found.
  virtual std::vector<double> refined() const = 0;
  /// How many Jacobians the last refinement evaluated; 0 where that cannot be seen.
  virtual int num_jacobians() const { return 0; }
};

struct Entry {
  std::string name;
  std::function<std::unique_ptr<Competitor>(const Scene& scene, const Task& task)> make;
};

}  // namespace bench
