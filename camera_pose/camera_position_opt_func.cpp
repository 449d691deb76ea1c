// SPDX-License-Identifier: BSD-3-Clause
// Projection of all points through a pose.
#include "camera_pose/camera_position_opt_func.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "camera_pose/rotation_type.h"
#include "fw_tools/rotation.h"
#include "fw_tools/scalar_helpers.h"

namespace {

fw::matrix<double> rotation_matrix(Representation representation, std::vector<double> r) {
  switch (representation) {
    case Representation::rotation_vector:
      return fw::rot_vec_rad_to_rot_mat(r);
    case Representation::angle_axis:
      return fw::ang_axis_rad_to_rot_mat(r);
    case Representation::quaternion:
      break;
  }
  return fw::quaternion_to_rot_mat(r);
}

/// [I | -t]
fw::matrix<double> translation_matrix(const double* t) {
  fw::matrix<double> A(3, 4);
  for (unsigned int i = 0; i < 3; ++i) {
    A[i][i] = 1.0;
    A[i][3] = -t[i];
  }
  return A;
}

/// row (X, Y, Z, 1)'
double dot(const double* row, const std::vector<double>& X) {
  return row[0] * X[0] + row[1] * X[1] + row[2] * X[2] + row[3];
}

}  // namespace

Camera_position_opt_func::Camera_position_opt_func(std::vector<std::vector<double>> the_points,
                                                   fw::matrix<double> the_K, int the_rotation_type)
    : points(std::move(the_points)), K(std::move(the_K)), rotation_type(the_rotation_type) {}

std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>& x) const {
  const Rotation_type* type = find_rotation_type(rotation_type);
  if (type != nullptr && type->is_bearing()) check_bearing_intrinsics();
  if (type == nullptr) raise(site::unknown_rotation_type, "Uknown rotation type!");

  const auto m = static_cast<std::size_t>(type->observation_size);
  const std::size_t block_size = points.size() * m;
  std::vector<double> out(block_size * static_cast<std::size_t>(type->num_representations), 0.0);
  const fw::matrix<double> P = projection_matrix(x);
  for (std::size_t i = 0; i < points.size(); ++i) {
    double* prediction = &out[i * m];
    prediction[0] = dot(P[0], points[i]);
    prediction[1] = dot(P[1], points[i]);
    const double w = dot(P[2], points[i]);
    if (type->is_bearing()) {
      prediction[2] = w;
    } else {
      prediction[0] /= w;
      prediction[1] /= w;
    }
  }
  const auto first_block_end = out.begin() + static_cast<std::ptrdiff_t>(block_size);
  for (std::size_t start = block_size; start < out.size(); start += block_size) {
    std::copy(out.begin(), first_block_end, out.begin() + static_cast<std::ptrdiff_t>(start));
  }
  return out;
}

void Camera_position_opt_func::check_bearing_intrinsics() const {
  constexpr double tolerance = 0.0001;
  if (fw::eq(K.get(0, 0), 1.0, tolerance) && fw::eq(K.get(1, 1), 1.0, tolerance) &&
      fw::eq(K.get(0, 2), 0.0, tolerance) && fw::eq(K.get(1, 2), 0.0, tolerance)) {
    return;
  }
  raise(site::bearing_intrinsics, fw::text("For bearing vectors, expected k to be identity, instead got ", K));
}

fw::matrix<double> Camera_position_opt_func::projection_matrix(const std::vector<double>& x) const {
  const Rotation_type& type = *find_rotation_type(rotation_type);
  const auto n_r = static_cast<std::size_t>(type.rotation_size());
  const std::vector<double> r(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(n_r));
  // P = K R' [I | -t] (docs/derivations.md, Eq. 5)
  return K * rotation_matrix(type.representation, r).transpose() * translation_matrix(&x[n_r]);
}
