// SPDX-License-Identifier: BSD-3-Clause
// One rotation model and one kernel for each Jacobian.
#include "camera_pose/camera_position_grad_func.h"

#include <algorithm>
#include <utility>

#include "camera_pose/camera_position_opt_func.h"
#include "camera_pose/jacobian_rows.h"
#include "fw_tools/rotation_arrays.h"

namespace {

/// Puts the pieces of a Jacobian where the published order wants them.
class Unpacking_row_sink final : public fw::Row_sink {
 public:
  Unpacking_row_sink(const fw::Packed_layout& layout, int num_columns, double* out)
      : Row_sink(columns_of_piece_, stride),
        layout_(layout),
        num_columns_(static_cast<std::size_t>(num_columns)),
        out_(out) {}

  void take(std::size_t first, std::size_t num_rows) override {
    const std::size_t m = layout_.num_outputs;
    const std::size_t first_item = first / m;
    const std::size_t num_items = std::min(num_rows / m, layout_.num_items - first_item);
    double* out = out_ + first_item * m * num_columns_;
    for (std::size_t i = 0; i < num_items; ++i) {
      for (std::size_t output = 0; output < m; ++output) {
        const double* entry = column(0) + (i / lanes * m + output) * lanes + i % lanes;
        for (std::size_t c = 0; c < num_columns_; ++c) *out++ = entry[c * stride];
      }
    }
  }

 private:
  static constexpr std::size_t lanes = fw::Packed_layout::group_size;
  static constexpr std::size_t max_columns = 8;        // seven parameters, and the prediction
  static constexpr std::size_t stride = max_rows + 8;  // columns a power of two apart share lines of the cache

  fw::Packed_layout layout_;
  std::size_t num_columns_;
  double* out_;
  alignas(fw::cache_line) double columns_of_piece_[max_columns * stride];
};

Simple_intrinsics simple(const Intrinsics& intrinsics) {
  return {intrinsics.K[0][0], intrinsics.K[0][2], intrinsics.K[1][2]};
}

}  // namespace

Camera_position_grad_func::Camera_position_grad_func(const std::vector<std::vector<double>>& the_points,
                                                     const fw::matrix<double>& K, fw::Opt_func* the_base)
    : Camera_position_grad_func(std::make_shared<const Packed_points>(the_points), Intrinsics(K), the_base) {}

Camera_position_grad_func::Camera_position_grad_func(std::shared_ptr<const Packed_points> the_points,
                                                     const Intrinsics& the_intrinsics, fw::Opt_func* the_base) noexcept
    : fw::Grad_func(the_base), points(std::move(the_points)), intrinsics(the_intrinsics) {}

int Camera_position_grad_func::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  const fw::Packed_layout layout = this->layout();
  Unpacking_row_sink sink(layout, num_columns(), J.ptr<double>() + start);
  linearise(x, sink);
  return static_cast<int>(layout.num_equations());
}

template <std::size_t n_r, Rotation_model<n_r> (*model)(const double*), int rotation_type>
Projection<n_r> Camera_position_grad_func_of<n_r, model, rotation_type>::projection_at(const double* x) const {
  return make_projection(simple(intrinsics), model(x), x + n_r);
}

template <std::size_t n_r, Rotation_model<n_r> (*model)(const double*), int rotation_type>
void Camera_position_grad_func_of<n_r, model, rotation_type>::linearise(const std::vector<double>& x,
                                                                        fw::Row_sink& sink) const {
  write_jacobian_rows(*points, projection_at(x.data()), is_bearing, 0, sink);
}

template <std::size_t n_r, Rotation_model<n_r> (*model)(const double*), int rotation_type>
bool Camera_position_grad_func_of<n_r, model, rotation_type>::predicts_base() const {
  const auto* objective = dynamic_cast<const Camera_position_opt_func*>(base);
  return objective != nullptr && rotation_type != 3 && objective->is_same(points, intrinsics, rotation_type);
}

template <std::size_t n_r, Rotation_model<n_r> (*model)(const double*), int rotation_type>
bool Camera_position_grad_func_of<n_r, model, rotation_type>::predicts_base_at(const std::vector<double>& x) const {
  // The models replace a zero vector, and the conversions of the objective an axis without a direction.
  return x[0] * x[0] + x[1] * x[1] + x[2] * x[2] > fw::rotation_arrays::axis_tolerance;
}

template class Camera_position_grad_func_of<3, rotation_vector_model, 0>;
template class Camera_position_grad_func_of<4, angle_axis_model, 1>;
template class Camera_position_grad_func_of<4, quaternion_model, 2>;
template class Camera_position_grad_func_of<4, unit_quaternion_model, 3>;
template class Camera_position_grad_func_of<3, rotation_vector_model, 10>;
template class Camera_position_grad_func_of<4, angle_axis_model, 11>;
template class Camera_position_grad_func_of<4, quaternion_model, 12>;
