// SPDX-License-Identifier: BSD-3-Clause
// The inner loops of the least-squares solution, in a variant for each instruction set.
#pragma once

#include <cstddef>

#include "fw_tools/instruction_set.h"

namespace fw {

/// The loops over the rows of a system, for one instruction set.
struct Reduction_kernels {
  /// Reduces a block of rows to a triangle by Householder reflections (docs/derivations.md, Eqs. 32 to 35). The block
  /// has n columns of J and one of b, each num_rows long (a multiple of 8) and aligned to a cache line, column c at
  /// columns + c * stride; it is used up. The triangle has n rows of n + 1 entries, row j begins at
  /// triangle + j * (n + 1); entries below the diagonal are not touched. A NaN or an infinity in the block leaves one
  /// in row 0. `scratch` has 2 (n + 1) entries.
  void (*reduce)(double* columns, std::size_t stride, std::size_t num_rows, std::size_t n, double* triangle,
                 double* scratch);

  /// sum (a - b)^2; size is a multiple of 8, both are aligned to a cache line.
  double (*squared_distance)(const double* a, const double* b, std::size_t size);
  /// b = a - b, and sum b^2 of the new b.
  double (*subtract_from)(const double* a, double* b, std::size_t size);
};

/// The set must be available.
const Reduction_kernels& reduction_kernels(Instruction_set set);

}  // namespace fw
