// SPDX-License-Identifier: BSD-3-Clause
// What is constant over the points of one evaluation.
#pragma once

#include <cstddef>

#include "camera_pose/rotation_models.h"

/// The intrinsics that Jacobians differentiate: [f 0 cx; 0 f cy; 0 0 1].
struct Simple_intrinsics {
  double f;   ///< focal length of both axes, pixels
  double cx;  ///< principal point, pixels to the right
  double cy;  ///< principal point, pixels down
};

/// M = K R' and its derivatives by the n_r rotation parameters, and the camera centre t: a point X has the numerators
/// and the depth M (X - t) (docs/derivations.md, Eqs. 19 and 20).
template <std::size_t n_r>
struct Projection {
  double M[3][3];        ///< K R', pixels
  double dM[n_r][3][3];  ///< dM[j] = dM / dr_j
  double t[3];           ///< camera centre, world frame and units
};

namespace projection_detail {

/// out = K R'
inline void project(const Simple_intrinsics& K, const double (&R)[3][3], double (&out)[3][3]) {
  for (int j = 0; j < 3; ++j) {
    out[0][j] = K.f * R[j][0] + K.cx * R[j][2];
    out[1][j] = K.f * R[j][1] + K.cy * R[j][2];
    out[2][j] = R[j][2];
  }
}

}  // namespace projection_detail

/// The projection of a camera with the rotation R (camera to world) and the centre t, 3 world coordinates
/// (docs/derivations.md, Eq. 19).
template <std::size_t n_r>
Projection<n_r> make_projection(const Simple_intrinsics& K, const Rotation_model<n_r>& rotation, const double* t) {
  Projection<n_r> projection;
  projection_detail::project(K, rotation.R, projection.M);
  for (std::size_t j = 0; j < n_r; ++j) projection_detail::project(K, rotation.dR[j], projection.dM[j]);
  for (std::size_t j = 0; j < 3; ++j) projection.t[j] = t[j];
  return projection;
}

/// The same projection differentiated by other parameters, whose derivatives F[i][j] = d(parameter i) / d(other j) are
/// given: dM / d(other j) = sum_i F_ij dM_i. The rows of a point are linear in dM, so they obey Eq. 31 with it.
template <std::size_t n_other, std::size_t n_r>
Projection<n_other> carry_over(const Projection<n_r>& projection, const double (&F)[n_r][n_other]) {
  Projection<n_other> result;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      result.M[row][column] = projection.M[row][column];
      for (std::size_t j = 0; j < n_other; ++j) {
        double total = 0.0;
        for (std::size_t i = 0; i < n_r; ++i) total += projection.dM[i][row][column] * F[i][j];
        result.dM[j][row][column] = total;
      }
    }
    result.t[row] = projection.t[row];
  }
  return result;
}
