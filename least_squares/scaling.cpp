// SPDX-License-Identifier: BSD-3-Clause
// Largest entries and their powers of two.
#include "least_squares/scaling.h"

#include <algorithm>
#include <cmath>

#include "least_squares/small_system.h"

namespace kelvane {

bool is_well_scaled(const double* triangle, std::size_t n) {
  Aligned_buffer<8> squared_lengths;
  squared_lengths.resize(n + 1);
  squared_column_lengths(triangle, n, squared_lengths.data());
  return std::all_of(squared_lengths.data(), squared_lengths.data() + n + 1, is_safe_square);
}

void Scaling::start(std::size_t n) {
  n_ = n;
  is_finite_ = true;
  largest_.resize(n + 1);
  power_.resize(n + 1);
  std::fill_n(largest_.data(), n + 1, 0.0);
  std::fill_n(power_.data(), n + 1, 0.0);
}

void Scaling::measure(Block& block, std::size_t num_rows) {
  for (std::size_t c = 0; c <= n_; ++c) {
    const double* column = block.column(c);
    for (std::size_t i = 0; i < num_rows; ++i) {
      is_finite_ = is_finite_ && std::isfinite(column[i]);
      largest_[c] = std::max(largest_[c], std::abs(column[i]));
    }
  }
}

void Scaling::choose(std::size_t middle) {
  const std::size_t ends[] = {0, middle, n_, n_ + 1};
  for (int part = 0; part < 3; ++part) {
    double largest = 0.0;
    for (std::size_t c = ends[part]; c < ends[part + 1]; ++c) largest = std::max(largest, largest_[c]);
    const int power = largest > 0.0 ? std::ilogb(largest) : 0;
    for (std::size_t c = ends[part]; c < ends[part + 1]; ++c) power_[c] = power;
  }
}

void Scaling::apply(Block& block, std::size_t num_rows) const {
  for (std::size_t c = 0; c <= n_; ++c) {
    double* column = block.column(c);
    for (std::size_t i = 0; i < num_rows; ++i) column[i] = times_power_of_two(column[i], -power(c));
  }
}

double times_power_of_two(double value, int power) { return power == 0 ? value : std::scalbn(value, power); }

}  // namespace kelvane
