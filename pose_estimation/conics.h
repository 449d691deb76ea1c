// SPDX-License-Identifier: BSD-3-Clause
// Where two cones through the origin meet: the rays that two homogeneous quadratic equations in three unknowns share.
#pragma once

namespace kelvane {

inline constexpr int max_common_rays = 4;

/// Real solutions x of x'Ax = x'Bx = 0 for symmetric matrices, each up to a factor: their number, at most four. A
/// double solution, where the cones touch, may come twice, or not at all when rounding separates them
/// (docs/derivations.md, Eqs. 71 and 72).
int common_rays(const double (&A)[3][3], const double (&B)[3][3], double (&rays)[max_common_rays][3]);

}  // namespace kelvane
