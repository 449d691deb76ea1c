// SPDX-License-Identifier: BSD-3-Clause
// The running triangle.
#include "fw_opt/row_reduction.h"

#include <algorithm>
#include <cmath>

#include "fw_opt/triangular_system.h"

namespace fw {

void Row_reduction::start(std::size_t n) {
  constexpr std::size_t lanes = Packed_layout::group_size;
  const std::size_t num_columns = n + 1;
  n_ = n;
  is_first_ = true;
  rows_above_ = (n + lanes - 1) / lanes * lanes;
  column_stride_ = rows_above_ + max_rows + lanes;
  block_.resize(num_columns * column_stride_);
  columns_ = block_.data() + rows_above_;
  scratch_.resize(2 * num_columns);
  triangle_.resize(n * num_columns);
  std::fill_n(triangle_.data(), n * num_columns, 0.0);
}

void Row_reduction::take(std::size_t /*first*/, std::size_t num_rows) {
  const std::size_t rows_above = is_first_ ? 0 : rows_above_;
  if (!is_first_) put_triangle_above();
  kernels_->reduce(columns_ - rows_above, column_stride_, rows_above + num_rows, n_, triangle_.data(), scratch_.data());
  is_first_ = false;
}

void Row_reduction::put_triangle_above() {
  for (std::size_t c = 0; c <= n_; ++c) {
    double* column = block_.data() + c * column_stride_;
    for (std::size_t j = 0; j < n_; ++j) column[j] = triangle_[j * (n_ + 1) + c];
    for (std::size_t j = n_; j < rows_above_; ++j) column[j] = 0.0;
  }
}

double Row_reduction::squared_norm() const { return squared_norm_of_triangle(triangle_.data(), n_); }

bool Row_reduction::is_well_scaled(double squared_norm_of_R) const {
  // Inside these the fourth powers of R, which OpenCV's singular values need, and the products of R and c keep their
  // digits, and R is far above the length below which a column is left out.
  constexpr double smallest = 1e-120;
  constexpr double largest = 1e140;
  constexpr double smallest_of_c = 1e-140;
  bool is_finite = true;
  double largest_of_c = 0.0;
  for (std::size_t j = 0; j < n_; ++j) {
    const double entry = std::abs(triangle_[j * (n_ + 1) + n_]);
    is_finite &= std::isfinite(entry);
    largest_of_c = std::max(largest_of_c, entry);
  }
  return is_finite && largest_of_c >= smallest_of_c && squared_norm_of_R >= smallest && squared_norm_of_R <= largest;
}

}  // namespace fw
