// SPDX-License-Identifier: BSD-3-Clause
// What the refinement is meant to reach, against what was measured.
#pragma once

#include <iosfwd>
#include <vector>

#include "benchmarks/contest.h"

namespace bench {

/// Prints a table with the worst number measured for each goal; goals whose peer is missing are left out.
void print_goals(const std::vector<Contest>& contests, std::ostream& out);

}  // namespace bench
