// SPDX-License-Identifier: BSD-3-Clause
// The tables of the refinement benchmark, and the data of its chart.
#pragma once

#include <iosfwd>
#include <vector>

#include "benchmarks/contest.h"

namespace bench {

/// Type 0 against everyone: time, ratios, RMS. All contests of one task have the same entries.
void print_race(const std::vector<Contest>& contests, std::ostream& out);

/// What one call of another task takes, relative to its competitors.
void print_calls(const std::vector<Contest>& contests, const Task& task, std::ostream& out);

/// Columns for gnuplot, the first line their names: N, then ns per point and iteration of each competitor of type 0.
void write_chart_data(const std::vector<Contest>& contests, std::ostream& out);

}  // namespace bench
