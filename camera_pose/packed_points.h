// SPDX-License-Identifier: BSD-3-Clause
// The points of a refinement, stored once for everything that evaluates them.
#pragma once

#include <cstddef>
#include <vector>

#include "fw_tools/aligned_buffer.h"

/// Points in groups of eight: X of all eight, then Y, then Z. The last group is filled up with its last point.
class Packed_points {
 public:
  static constexpr std::size_t group_size = 8;                  ///< points
  static constexpr std::size_t group_doubles = 3 * group_size;  ///< doubles that a group takes

  /// num_points columns of 3 coordinates (world units), column after column.
  Packed_points(const double* coordinates, std::size_t num_points);
  /// The first 3 coordinates (world units) of each point, which must have as many; that is not checked.
  explicit Packed_points(const std::vector<std::vector<double>>& points);

  /// The number of points.
  std::size_t size() const { return size_; }
  /// Groups of eight, the last one counted whole.
  std::size_t num_groups() const { return (size_ + group_size - 1) / group_size; }
  /// 24 doubles, aligned to a cache line; further groups follow.
  const double* group(std::size_t index) const { return coordinates_.data() + index * group_doubles; }
  /// Coordinate c (0, 1, 2) of point i.
  double coordinate(std::size_t i, std::size_t c) const {
    return coordinates_[i / group_size * group_doubles + c * group_size + i % group_size];
  }

 private:
  void set(std::size_t i, const double* coordinates);
  void fill_last_group();

  std::size_t size_;
  fw::Aligned_buffer coordinates_;
};
