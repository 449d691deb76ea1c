// SPDX-License-Identifier: BSD-3-Clause
// Projection of all points through a pose.
#include "camera_pose/camera_position_opt_func.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "camera_pose/point_kernels.h"
#include "fw_tools/rotation_arrays.h"
#include "fw_tools/scalar_helpers.h"

namespace {

constexpr std::size_t group_size = Packed_points::group_size;
constexpr std::size_t groups_per_piece = 16;  // a piece stays in the first-level cache

void make_rotation_matrix(Representation representation, const double* r, double (&R)[3][3]) {
  if (representation == Representation::rotation_vector) {
    fw::rotation_arrays::rot_vec_rad_to_rot_mat(r, R);
  } else if (representation == Representation::angle_axis) {
    fw::rotation_arrays::ang_axis_rad_to_rot_mat(r, R);
  } else {
    fw::rotation_arrays::quaternion_to_rot_mat(r, R);
  }
}

/// Puts the pieces of a prediction where the published order wants them.
class Unpacking_value_sink final : public fw::Value_sink {
 public:
  Unpacking_value_sink(const fw::Packed_layout& layout, std::vector<double>& out) : layout_(layout), out_(out) {}

  void take(std::size_t first, const double* piece, std::size_t size) override {
    const std::size_t m = layout_.num_outputs;
    const std::size_t rows_per_stack = layout_.num_groups() * group_size * m;
    const std::size_t stack = first / rows_per_stack;
    const std::size_t first_item = first % rows_per_stack / m;
    double* out = &out_[(stack * layout_.num_items + first_item) * m];
    const std::size_t num_items = std::min(size / m, layout_.num_items - first_item);
    for (std::size_t i = 0; i < num_items; ++i) {
      const double* values = piece + i / group_size * group_size * m + i % group_size;
      for (std::size_t output = 0; output < m; ++output) *out++ = values[output * group_size];
    }
  }

 private:
  fw::Packed_layout layout_;
  std::vector<double>& out_;
};

}  // namespace

Camera_position_opt_func::Camera_position_opt_func(const std::vector<std::vector<double>>& the_points,
                                                   const fw::matrix<double>& K, int the_rotation_type)
    : Camera_position_opt_func(std::make_shared<const Packed_points>(the_points), Intrinsics(K), the_rotation_type) {}

Camera_position_opt_func::Camera_position_opt_func(std::shared_ptr<const Packed_points> the_points,
                                                   const Intrinsics& the_intrinsics, int the_rotation_type) noexcept
    : points(std::move(the_points)),
      intrinsics(the_intrinsics),
      rotation_type(the_rotation_type),
      type(find_rotation_type(rotation_type)) {}

std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>& x) const {
  if (type == nullptr) raise(site::unknown_rotation_type, "Uknown rotation type!");
  std::vector<double> out(layout().num_equations());
  Unpacking_value_sink sink(layout(), out);
  evaluate(x, sink);
  return out;
}

const fw::Packed_function* Camera_position_opt_func::packed() const { return type == nullptr ? nullptr : this; }

bool Camera_position_opt_func::is_same(const std::shared_ptr<const Packed_points>& these_points,
                                       const Intrinsics& these_intrinsics, int this_type) const {
  return points == these_points && rotation_type == this_type && intrinsics.is_simple() &&
         intrinsics == these_intrinsics;
}

fw::Packed_layout Camera_position_opt_func::layout() const {
  return {points->size(), static_cast<std::size_t>(type->observation_size),
          static_cast<std::size_t>(type->num_representations)};
}

void Camera_position_opt_func::evaluate(const std::vector<double>& x, fw::Value_sink& sink) const {
  if (type->is_bearing()) check_bearing_intrinsics();
  double P[3][4];
  make_projection_matrix(x.data(), P);

  const Point_kernels& kernels = point_kernels(fw::best_instruction_set());
  const auto predict = type->is_bearing() ? kernels.predict_bearings : kernels.predict_pixels;
  const auto m = static_cast<std::size_t>(type->observation_size);
  const std::size_t num_groups = points->num_groups();
  for (std::size_t g = 0; g < num_groups; g += groups_per_piece) {
    const std::size_t count = std::min(groups_per_piece, num_groups - g);
    const std::size_t size = count * group_size * m;
    alignas(fw::cache_line) double values[3 * groups_per_piece * group_size];
    predict(points->group(g), std::min(count * group_size, points->size() - g * group_size), P, values);
    for (std::size_t stack = 0; stack < layout().num_stacks; ++stack) {
      sink.take((stack * num_groups + g) * group_size * m, values, size);
    }
  }
}

void Camera_position_opt_func::check_bearing_intrinsics() const {
  constexpr double tolerance = 0.0001;
  const auto& K = intrinsics.K;
  if (fw::eq(K[0][0], 1.0, tolerance) && fw::eq(K[1][1], 1.0, tolerance) && fw::eq(K[0][2], 0.0, tolerance) &&
      fw::eq(K[1][2], 0.0, tolerance)) {
    return;
  }
  raise(site::bearing_intrinsics,
        fw::text("For bearing vectors, expected k to be identity, instead got ", intrinsics.matrix()));
}

/// P = K R' [I | -t] (docs/derivations.md, Eq. 5)
void Camera_position_opt_func::make_projection_matrix(const double* x, double (&P)[3][4]) const {
  double R[3][3];
  make_rotation_matrix(type->representation, x, R);
  const double* t = x + type->rotation_size();
  for (int i = 0; i < 3; ++i) {
    const double* k = intrinsics.K[i];
    for (int j = 0; j < 3; ++j) P[i][j] = k[0] * R[j][0] + k[1] * R[j][1] + k[2] * R[j][2];
    P[i][3] = -(P[i][0] * t[0] + P[i][1] * t[1] + P[i][2] * t[2]);
  }
}
