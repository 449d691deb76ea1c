// SPDX-License-Identifier: BSD-3-Clause
// Rows by the parameters, put where the published order wants them.
#include "framework/camera_position_grad_func.h"

#include <algorithm>
#include <cstddef>

#include "camera_pose/point_kernels.h"
#include "camera_pose/rotation_type.h"
#include "framework/entries_of_matrix.h"
#include "least_squares/block.h"
#include "rotations/chart.h"

using kelvane::Block;
using kelvane::group_size;

Camera_position_grad_func::Camera_position_grad_func(const std::vector<std::vector<double>>& the_points,
                                                     const fw::matrix<double>& the_K, fw::Opt_func* the_base)
    : points(the_points), K(the_K) {
  base = the_base;
}

Camera_position_grad_func& Camera_position_grad_func::operator=(const Camera_position_grad_func& source) {
  if (this == &source) return *this;  // a matrix assigned to itself loses its elements
  points = source.points;
  K = source.K;
  return *this;
}

int Camera_position_grad_func::write_block(const kelvane::Rotation_type& type, std::size_t k,
                                           const std::vector<double>& x, double* out) const {
  kelvane::Chart charts[kelvane::max_blocks];
  type.models(x.data(), charts);
  const kelvane::Projection projection = kelvane::make_projection(kelvane::Entries_of_matrix(K).simple(),
                                                                  charts[k].model, x.data() + type.rotation_size());
  const kelvane::Point_kernels& kernels = kelvane::point_kernels(kelvane::best_instruction_set());
  const auto write = type.is_bearing() ? kernels.bearing_rows_by_parameters : kernels.pixel_rows_by_parameters;

  const auto n = static_cast<std::size_t>(type.num_dimensions());
  const auto m = static_cast<std::size_t>(type.observation_size);
  Block block;
  block.resize(n);
  double coordinates[3 * Block::max_rows / 2] = {};
  for (std::size_t first = 0; first < points.size(); first += Block::max_rows / m) {
    const std::size_t count = std::min(Block::max_rows / m, points.size() - first);
    for (std::size_t i = 0; i < count; ++i) std::copy_n(points[first + i].data(), 3, coordinates + 3 * i);
    write(coordinates, count, projection, block.column(0), block.stride());
    for (std::size_t row = 0; row < m * count; ++row) {
      const std::size_t i = row / m;
      const std::size_t place = (i / group_size * m + row % m) * group_size + i % group_size;
      for (std::size_t c = 0; c < n; ++c) *out++ = block.column(c)[place];
    }
  }
  return static_cast<int>(m * points.size());
}

template <int rotation_type>
int Camera_position_grad_func_of<rotation_type>::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  if (points.empty()) return 0;
  return write_block(*kelvane::find_rotation_type(rotation_type), 0, x, J.ptr<double>() + start);
}

template class Camera_position_grad_func_of<0>;
template class Camera_position_grad_func_of<1>;
template class Camera_position_grad_func_of<2>;
template class Camera_position_grad_func_of<3>;
template class Camera_position_grad_func_of<10>;
template class Camera_position_grad_func_of<11>;
template class Camera_position_grad_func_of<12>;
