// SPDX-License-Identifier: BSD-3-Clause
// How many points agree with a pose by mere chance.
#pragma once

#include <vector>

namespace kelvane {

/// The points that agree with a pose.
struct Consensus {
  double log10_chance = 0;  ///< logarithm of how many poses of three points would have as good a one by mere chance
  double square = 0;        ///< the largest squared error among them
};

/// The one that is least to be expected where all observations are wrong (Moisan and Stival 2004; docs/derivations.md,
/// Eq. 75). `squares` are squared errors in units of the largest, `chance` is the probability that a wrong observation
/// is nearer than that.
Consensus consensus(std::vector<double> squares, double chance);

}  // namespace kelvane
