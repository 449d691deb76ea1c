// SPDX-License-Identifier: BSD-3-Clause
// A least-squares system of any number of rows, reduced to its triangle while the rows arrive.
#pragma once

#include <cstddef>

#include "least_squares/block.h"
#include "least_squares/reduction_kernels.h"

namespace kelvane {

/// Takes the rows of [J | b] and reduces them to [R | c] with |J y - b|^2 = |R y - c|^2 + a constant, R upper
/// triangular, by Householder reflections in blocks (docs/derivations.md, Eqs. 32 to 35). The triangle of all blocks so
/// far lies above the rows of the next.
class Triangle {
 public:
  /// With the kernels of a set, which must be available.
  explicit Triangle(Instruction_set set = best_instruction_set()) : kernels_(&reduction_kernels(set)) {}

  /// Begins a system of n >= 1 unknowns.
  void start(std::size_t n);
  /// The first num_rows rows of a block made for n unknowns, a multiple of the group; they are used up.
  void absorb(Block& block, std::size_t num_rows);
  /// The same for six unknowns and pairs of rows [g 0 a_u; 0 g a_v], which hold in num_groups groups of 8 pairs: g in
  /// column 0, the other four unknowns and b in columns 1 to 5, 8 of the rows u and then 8 of the rows v a group.
  void absorb_pairs(Block& block, std::size_t num_groups);

  /// Unknowns.
  std::size_t n() const { return n_; }
  /// Row j begins at j * (n + 1): entries left of the diagonal are zero, entry n is c. Rubbish before the first block.
  const double* entries() const { return entries_.data(); }

 private:
  void put_above(Block& block) const;
  void put_pairs_above(Block& block) const;

  static constexpr std::size_t usual_columns = 8;  // seven unknowns

  const Reduction_kernels* kernels_;
  std::size_t n_ = 0;
  bool is_empty_ = true;
  Aligned_buffer<usual_columns*(usual_columns - 1)> entries_;
  Aligned_buffer<2 * usual_columns> scratch_;
};

}  // namespace kelvane
