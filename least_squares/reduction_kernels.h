// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the least-squares solution, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "least_squares/instruction_set.h"

namespace kelvane {

/// The loops over the rows of a system, for one instruction set.
struct Reduction_kernels {
  /// Reduces a block of rows to a triangle by Householder reflections (docs/derivations.md, Eqs. 32 to 35). The block
  /// has n columns of J and one of b, each num_rows long (a multiple of 8) and aligned to a cache line, column c at
  /// columns + c * stride; it is used up. The triangle has n rows of n + 1 entries, row j begins at
  /// triangle + j * (n + 1); entries below the diagonal are not touched. A NaN or an infinity in the block leaves one
  /// in row 0. `scratch` has 2 (n + 1) entries.
  void (*reduce)(double* columns, std::size_t stride, std::size_t num_rows, std::size_t n, double* triangle,
                 double* scratch);

  /// The same for equations that come in pairs of rows (u, v), as pixels do: [g 0 a_u; 0 g a_v], with six unknowns.
  /// Groups of 8 pairs: g has 8 entries a group; the five columns behind it, four of a and one of b, have 8 of the rows
  /// u, then 8 of the rows v, and are `stride` apart from columns on. The triangle has six rows of seven entries.
  void (*reduce_pairs)(const double* g, double* columns, std::size_t stride, std::size_t num_groups, double* triangle);
};

/// The set must be available.
const Reduction_kernels& reduction_kernels(Instruction_set set);

}  // namespace kelvane
