// SPDX-License-Identifier: BSD-3-Clause
// The loop over pieces of points around the kernels.
#include "camera_pose/jacobian_rows.h"

#include <algorithm>

#include "camera_pose/point_kernels.h"

namespace {

using fw::Row_sink;

template <std::size_t n_r>
auto choose_kernel(bool is_bearing) {
  const Point_kernels& kernels = point_kernels(fw::best_instruction_set());
  if constexpr (n_r == 3) {
    return is_bearing ? kernels.bearing_rows_3 : kernels.pixel_rows_3;
  } else {
    return is_bearing ? kernels.bearing_rows_4 : kernels.pixel_rows_4;
  }
}

}  // namespace

template <std::size_t n_r>
void write_jacobian_rows(const Packed_points& points, const Projection<n_r>& projection, bool is_bearing,
                         std::size_t first_row, Row_sink& sink) {
  const auto kernel = choose_kernel<n_r>(is_bearing);
  const std::size_t rows_per_point = is_bearing ? 3 : 2;
  constexpr std::size_t group_size = Packed_points::group_size;
  const std::size_t groups_per_piece = Row_sink::max_rows / (rows_per_point * group_size);
  const std::size_t num_groups = points.num_groups();
  for (std::size_t g = 0; g < num_groups; g += groups_per_piece) {
    const std::size_t count = std::min(groups_per_piece, num_groups - g);
    const std::size_t num_points = std::min(count * group_size, points.size() - g * group_size);
    kernel(points.group(g), num_points, projection, sink.column(0), sink.column_stride());
    sink.take(first_row + g * group_size * rows_per_point, count * group_size * rows_per_point);
  }
}

template void write_jacobian_rows<3>(const Packed_points&, const Projection<3>&, bool, std::size_t, Row_sink&);
template void write_jacobian_rows<4>(const Packed_points&, const Projection<4>&, bool, std::size_t, Row_sink&);
