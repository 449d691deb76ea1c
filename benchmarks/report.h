// SPDX-License-Identifier: BSD-3-Clause
// The tables of the refinement benchmark, and the data of its chart.
#pragma once

#include <iosfwd>
#include <vector>

#include "benchmarks/contest.h"

namespace bench {

/// Type 0 against everyone: time, ratios, RMS. All contests of one type have the same entries.
void print_race(const std::vector<Contest>& contests, std::ostream& out);

/// Each of the types that make one iteration in a call against the literal reference.
void print_single_steps(const std::vector<Contest>& contests, std::ostream& out);

/// Columns for gnuplot, the first line their names: N, then ns per point and iteration of each competitor of type 0.
void write_chart_data(const std::vector<Contest>& contests, std::ostream& out);

}  // namespace bench
