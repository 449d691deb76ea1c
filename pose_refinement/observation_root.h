// SPDX-License-Identifier: BSD-3-Clause
// What the covariance of an observation multiplies its residual by.
#pragma once

#include "pose_refinement/symmetric_root.h"

namespace kelvane {

/// W with W'W = C^-1, lower triangular, of 2 by 2 numbers row by row.
Root root_of_pixel(const double* C, double* W);

/// W with W'W the inverse of the part of C, 3 by 3, across a unit vector n. Along n, where directions that point away
/// have no part across, the mean of both others counts, so that the same noise all round is the plain sum of squares
/// (docs/derivations.md, Eq. 58).
Root root_of_direction(const double* C, const double* n, double* W);

}  // namespace kelvane
