// SPDX-License-Identifier: BSD-3-Clause
// The minimum-norm least-squares solution of a system that exists as a matrix.
#pragma once

#include <cstddef>

#include "least_squares/instruction_set.h"

namespace kelvane {

/// The dx of least length among those of least |J dx - b|, n entries; NaN when J or b holds a NaN or an infinity. J is
/// row-major, m by n with m >= n >= 1. A singular value counts as zero up to max(m, n) eps of the largest after the
/// columns were brought to one size (docs/numerics.md), or up to 2 eps of the sum of all, the limit of cv::solve.
void solve_least_squares(const double* J, const double* b, std::size_t m, std::size_t n, double* dx,
                         Instruction_set set = best_instruction_set());

}  // namespace kelvane
