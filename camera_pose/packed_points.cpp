// SPDX-License-Identifier: BSD-3-Clause
// From points one by one to groups of eight.
#include "camera_pose/packed_points.h"

Packed_points::Packed_points(const double* coordinates, std::size_t num_points)
    : size_(num_points), coordinates_(num_groups() * group_doubles) {
  for (std::size_t i = 0; i < size_; ++i, coordinates += 3) set(i, coordinates);
  fill_last_group();
}

Packed_points::Packed_points(const std::vector<std::vector<double>>& points)
    : size_(points.size()), coordinates_(num_groups() * group_doubles) {
  for (std::size_t i = 0; i < size_; ++i) set(i, points[i].data());
  fill_last_group();
}

void Packed_points::set(std::size_t i, const double* coordinates) {
  double* first = &coordinates_[i / group_size * group_doubles + i % group_size];
  for (std::size_t c = 0; c < 3; ++c) first[c * group_size] = coordinates[c];
}

void Packed_points::fill_last_group() {
  if (size_ == 0) return;
  const double last[] = {coordinate(size_ - 1, 0), coordinate(size_ - 1, 1), coordinate(size_ - 1, 2)};
  for (std::size_t i = size_; i < num_groups() * group_size; ++i) set(i, last);
}
