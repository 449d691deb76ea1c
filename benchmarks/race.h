// SPDX-License-Identifier: BSD-3-Clause
// The one way in which calls are timed against each other, and the tables in which it is told.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/scene.h"

namespace bench {

/// A call that takes part.
struct Contestant {
  std::string name;
  std::function<void()> call;            ///< all that is timed
  std::function<kelvane::Pose()> found;  ///< by the last call
};

/// Those that are timed in turn; the first is what the others are measured by.
using Field = std::vector<Contestant>;

/// Markdown, the first row above the line.
void print_table(const std::vector<std::vector<std::string>>& rows, std::ostream& out);
/// So many significant digits, and all of those before the point.
std::string number(double value, int digits = 3);

/// Seconds of processor time of this process, which stands still while others have the processor.
double processor_seconds();

/// A table of races: the first one's time, and how many times of it each other takes, with half of the distance between
/// the quartiles.
class Comparison {
 public:
  explicit Comparison(double seconds) : seconds_(seconds) {}

  /// A race in some scenes of a kind, up to 16, in each of which the same take part; times are divided by `work`.
  void add(const std::string& label, const Cell& cell, double work, const std::function<Field(const Scene&)>& field_of);
  void print(const std::string& title, const std::string& unit, std::ostream& out) const;

 private:
  double seconds_;
  std::vector<std::vector<std::string>> rows_;
  double most_apart_ = 0;
};

}  // namespace bench
