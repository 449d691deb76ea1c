// SPDX-License-Identifier: BSD-3-Clause
// A linear system that exists as matrices, piece by piece.
#pragma once

#include <algorithm>
#include <cstddef>
#include <opencv2/core.hpp>

#include "fw_opt/least_squares.h"

namespace fw {

/// The rows of J (m by n, CV_64F, continuous) and b (m by 1, likewise), which have to outlive it.
class Matrix_rows final : public Row_source {
 public:
  Matrix_rows(const cv::Mat& J, const cv::Mat& b) : J_(J), b_(b) {}

  void send(Row_sink& sink) override {
    constexpr std::size_t filling = Packed_layout::group_size;
    const auto n = static_cast<std::size_t>(J_.cols);
    const auto m = static_cast<std::size_t>(J_.rows);
    for (std::size_t first = 0; first < m; first += Row_sink::max_rows) {
      const std::size_t num_rows = std::min(Row_sink::max_rows, m - first);
      const std::size_t num_filled = (num_rows + filling - 1) / filling * filling;
      for (std::size_t c = 0; c <= n; ++c) {
        const double* entry = c < n ? J_.ptr<double>() + first * n + c : b_.ptr<double>() + first;
        double* column = sink.column(c);
        for (std::size_t i = 0; i < num_rows; ++i, entry += c < n ? n : 1) column[i] = *entry;
        std::fill(column + num_rows, column + num_filled, 0.0);
      }
      sink.take(first, num_filled);
    }
  }

 private:
  const cv::Mat& J_;
  const cv::Mat& b_;
};

}  // namespace fw
