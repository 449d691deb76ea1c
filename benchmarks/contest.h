// SPDX-License-Identifier: BSD-3-Clause
// Times competitors against each other, interleaved in one run.
#pragma once

#include <string>
#include <vector>

#include "benchmarks/competitor.h"

namespace bench {

/// How long one size may take.
struct Effort {
  double seconds;
  int min_repetitions;
};

struct Result {
  std::string name;
  std::vector<double> ns;                    // time of one call, by repetition
  double rms = 0;                            // over all points of all scenes, see equation_rms
  double num_jacobians = 0;                  // average of the scenes, 0: not known
  std::vector<std::vector<double>> refined;  // search vector, by scene
};

/// All results of one type and number of points, in the order of the entries.
struct Contest {
  Task task;
  int num_points;
  std::vector<Result> results;

  /// Null when nobody of that name took part.
  const Result* find(const std::string& name) const;
  /// The median time of one iteration, divided by the number of points, in nanoseconds.
  double ns_per_point(const Result& result) const;
};

/// Each repetition runs every entry once, one after the other, in a batch of about a millisecond or one call. The
/// repetitions take turns at several scenes.
Contest hold_contest(const std::vector<Entry>& entries, const Task& task, int num_points, const Effort& effort);

/// The median over the repetitions of a's time divided by b's.
double median_ratio(const Result& a, const Result& b);

/// The largest difference between the entries of both search vectors, in any scene.
double largest_difference(const Result& a, const Result& b);

}  // namespace bench
