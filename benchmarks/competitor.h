// SPDX-License-Identifier: BSD-3-Clause
// What a contest asks of everyone who takes part.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/scene.h"

namespace bench {

/// Without criteria a call of type 0 makes ten iterations; every other type needs criteria and makes one.
constexpr int num_iterations(int type) { return type == 0 ? 10 : 1; }

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
  std::function<std::unique_ptr<Competitor>(const Scene& scene, int type)> make;
};

}  // namespace bench
