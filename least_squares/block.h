// SPDX-License-Identifier: BSD-3-Clause
// A few hundred equations at a time, column by column.
#pragma once

#include <cstddef>

#include "least_squares/aligned_buffer.h"
#include "least_squares/instruction_set.h"

namespace kelvane {

/// Rows of [J | b] with n columns of J: few enough that they stay in the first-level cache while they are made,
/// completed and reduced.
class Block {
 public:
  static constexpr std::size_t max_rows = 240;  ///< a multiple of the group and of three groups

  /// Columns for n unknowns and a right-hand side; the content is rubbish.
  void resize(std::size_t n) {
    rows_above_ = (n + 2 * group_size - 1) / group_size * group_size;
    stride_ = rows_above_ + max_rows + group_size;  // columns a power of two apart would share lines of the cache
    columns_.resize((n + 1) * stride_);
  }

  /// Row i of column c is column(c)[i]; room for max_rows, beginning on a cache line.
  double* column(std::size_t c) { return columns_.data() + c * stride_ + rows_above_; }
  /// Doubles from one column to the next.
  std::size_t stride() const { return stride_; }
  /// Rows in front of row 0, at least n and two groups: there a triangle finds its place.
  std::size_t rows_above() const { return rows_above_; }

 private:
  static constexpr std::size_t usual_columns = 8;  // seven unknowns

  std::size_t rows_above_ = 0;
  std::size_t stride_ = 0;
  Aligned_buffer<usual_columns*(max_rows + 4 * group_size)> columns_;
};

}  // namespace kelvane
