// SPDX-License-Identifier: BSD-3-Clause
// The running triangle.
#include "least_squares/triangle.h"

#include <algorithm>

namespace kelvane {

void Triangle::start(std::size_t n) {
  is_empty_ = true;
  if (n == n_) return;  // nothing ever writes left of the diagonal
  n_ = n;
  scratch_.resize(2 * (n + 1));
  entries_.resize(n * (n + 1));
  std::fill_n(entries_.data(), n * (n + 1), 0.0);
}

void Triangle::absorb(Block& block, std::size_t num_rows) {
  const std::size_t rows_above = is_empty_ ? 0 : block.rows_above();
  if (!is_empty_) put_above(block);
  kernels_->reduce(block.column(0) - rows_above, block.stride(), rows_above + num_rows, n_, entries_.data(),
                   scratch_.data());
  is_empty_ = false;
}

void Triangle::absorb_pairs(Block& block, std::size_t num_groups) {
  if (!is_empty_) put_pairs_above(block);
  const std::size_t groups_above = is_empty_ ? 0 : 1;
  kernels_->reduce_pairs(block.column(0) - groups_above * group_size, block.column(1) - groups_above * 2 * group_size,
                         block.stride(), num_groups + groups_above, entries_.data());
  is_empty_ = false;
}

void Triangle::put_above(Block& block) const {
  for (std::size_t c = 0; c <= n_; ++c) {
    double* column = block.column(c) - block.rows_above();
    for (std::size_t j = 0; j < n_; ++j) column[j] = entries_[j * (n_ + 1) + c];
    for (std::size_t j = n_; j < block.rows_above(); ++j) column[j] = 0.0;
  }
}

/// Rows 0 and 1 are a pair; the others have nothing in the first two columns, so they are rows u of any pair.
void Triangle::put_pairs_above(Block& block) const {
  double* g = block.column(0) - group_size;
  std::fill_n(g, group_size, 0.0);
  g[0] = entries_[0];
  for (std::size_t c = 2; c < 7; ++c) {
    double* column = block.column(c - 1) - 2 * group_size;
    std::fill_n(column, 2 * group_size, 0.0);
    column[0] = entries_[c];
    column[group_size] = entries_[7 + c];
    for (std::size_t j = 2; j < 6; ++j) column[j - 1] = entries_[7 * j + c];
  }
}

}  // namespace kelvane
