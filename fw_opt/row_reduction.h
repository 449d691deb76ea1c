// SPDX-License-Identifier: BSD-3-Clause
// A least-squares system of any number of rows, reduced to its triangle while the rows arrive.
#pragma once

#include <cstddef>

#include "fw_opt/packed_equations.h"
#include "fw_opt/reduction_kernels.h"
#include "fw_tools/aligned_buffer.h"

namespace fw {

/// Takes the rows of [J | b], b as the last column, and reduces them to [R | c] with
/// |J dx - b|^2 = |R dx - c|^2 + a constant, R upper triangular, by Householder reflections in blocks that stay in the
/// first-level cache (docs/derivations.md, Eqs. 32 to 35). The triangle of all blocks so far lies above the rows of the
/// next. Memory is kept from one system to the next.
class Row_reduction final : public Row_sink {
 public:
  /// With the kernels of a set, which must be available.
  explicit Row_reduction(Instruction_set set = best_instruction_set())
      : Row_sink(nullptr, 0), kernels_(&reduction_kernels(set)) {}

  /// Begins a system of n unknowns, n >= 1.
  void start(std::size_t n);
  void take(std::size_t first, std::size_t num_rows) override;

  /// Row j begins at j * (n + 1): entries left of the diagonal are zero, entry n is c. Zero before the first piece.
  const double* triangle() const { return triangle_.data(); }

  /// sum R_ij^2
  double squared_norm() const;
  /// Whether every entry of the triangle is finite and R of a size whose squares neither overflow nor underflow. If
  /// not, J or b holds something that is not finite, or the system needs scaling.
  bool is_well_scaled(double squared_norm_of_R) const;

 private:
  void put_triangle_above();

  static constexpr std::size_t usual_columns = 8;  // seven unknowns

  const Reduction_kernels* kernels_;
  std::size_t n_ = 0;           // unknowns
  std::size_t rows_above_ = 0;  // room for the triangle, a multiple of 8
  bool is_first_ = true;
  Small_buffer<usual_columns*(max_rows + 16)> block_;
  Small_buffer<usual_columns*(usual_columns - 1)> triangle_;
  Small_buffer<2 * usual_columns> scratch_;
};

}  // namespace fw
