// SPDX-License-Identifier: BSD-3-Clause
// Projection of all points through a pose.
#include "framework/camera_position_opt_func.h"

#include <cstddef>

#include "camera_pose/bearing_intrinsics.h"
#include "camera_pose/rotation_type.h"
#include "framework/entries_of_matrix.h"

namespace {

constexpr fw::Site unknown_rotation_type{kelvane::site::bearing_intrinsics.file, 1704,
                                         kelvane::site::bearing_intrinsics.signature};

/// P = K R' [I | -t] (docs/derivations.md, Eq. 5)
struct Projection_matrix {
  double P[3][4];

  Projection_matrix(const double (&K)[3][3], const double (&R)[3][3], const double* t) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) P[i][j] = K[i][0] * R[j][0] + K[i][1] * R[j][1] + K[i][2] * R[j][2];
      P[i][3] = -(P[i][0] * t[0] + P[i][1] * t[1] + P[i][2] * t[2]);
    }
  }

  /// Row i of P (X, 1)'
  double row(int i, const std::vector<double>& X) const {
    return P[i][0] * X[0] + P[i][1] * X[1] + P[i][2] * X[2] + P[i][3];
  }
};

}  // namespace

Camera_position_opt_func::Camera_position_opt_func(const std::vector<std::vector<double>>& the_points,
                                                   const fw::matrix<double>& the_K, int the_rotation_type)
    : points(the_points), K(the_K), rotation_type(the_rotation_type) {}

Camera_position_opt_func& Camera_position_opt_func::operator=(const Camera_position_opt_func& source) {
  if (this == &source) return *this;  // a matrix assigned to itself loses its elements
  points = source.points;
  K = source.K;
  rotation_type = source.rotation_type;
  return *this;
}

std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>& x) const {
  const kelvane::Rotation_type* type = kelvane::find_rotation_type(rotation_type);
  if (type == nullptr) fw::raise(unknown_rotation_type, "Uknown rotation type!");
  const bool is_bearing = type->is_bearing();
  const kelvane::Entries_of_matrix entries(K);
  if (is_bearing) kelvane::check_bearing_intrinsics(entries.K);

  double R[3][3];
  kelvane::predicted_rotation(type->representation, x.data(), R);
  const Projection_matrix projection(entries.K, R, x.data() + type->rotation_size());
  const std::size_t block_size = points.size() * (is_bearing ? 3 : 2);
  std::vector<double> out(block_size * static_cast<std::size_t>(type->num_representations));
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double n_u = projection.row(0, points[i]);
    const double n_v = projection.row(1, points[i]);
    const double w = projection.row(2, points[i]);
    if (is_bearing) {
      out[3 * i] = n_u;
      out[3 * i + 1] = n_v;
      out[3 * i + 2] = w;
      continue;
    }
    for (std::size_t first = 0; first < out.size(); first += block_size) {
      out[first + 2 * i] = n_u / w;
      out[first + 2 * i + 1] = n_v / w;
    }
  }
  return out;
}
