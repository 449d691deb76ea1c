// SPDX-License-Identifier: BSD-3-Clause
// The loop over points that says how many agree with a pose, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "least_squares/instruction_set.h"

namespace kelvane {

/// X, Y, Z of a point, the direction d in which it is seen, and the two rows of the derivative of the observation by
/// the point at d, divided by the largest error: twelve numbers, each of eight points at a time.
inline constexpr std::size_t numbers_of_match = 12;

/// p = A X + b of each point is seen, to first order in the angle between p and d, J p / (d'p) from where it was
/// observed (docs/derivations.md, Eq. 74), if d'p > 0.
struct Consensus_kernels {
  /// Adds to each of eight sums, one for each place in a group, 1 less the squared distance, where this is above 0.
  void (*add_gains)(const double* groups, std::size_t num_groups, const double (&A)[3][3], const double (&b)[3],
                    double* sums);
  /// The squared distance of each point, infinite where d'p is not above 0.
  void (*squares)(const double* groups, std::size_t num_groups, const double (&A)[3][3], const double (&b)[3],
                  double* values);
};

/// The set must be available.
const Consensus_kernels& consensus_kernels(Instruction_set set);

}  // namespace kelvane
