// SPDX-License-Identifier: BSD-3-Clause
// What is constant over the points of one Jacobian, and the kernel that is run for each point.
#pragma once

#include "camera_pose/rotation_models.h"

/// The intrinsics that Jacobians differentiate: [f 0 cx; 0 f cy; 0 0 1].
struct Simple_intrinsics {
  double f, cx, cy;
};

/// P = K R' [I | -t] and its derivatives by the n_r rotation parameters (docs/derivations.md, Eqs. 19 and 20).
template <std::size_t n_r>
struct Projection {
  double P[3][4];
  double dP[n_r][3][4];
};

namespace projection_detail {

/// out = K R' [I | -t]
inline void project(const Simple_intrinsics& K, const double (&R)[3][3], const double* t, double (&out)[3][4]) {
  for (int j = 0; j < 3; ++j) {
    out[0][j] = K.f * R[j][0] + K.cx * R[j][2];
    out[1][j] = K.f * R[j][1] + K.cy * R[j][2];
    out[2][j] = R[j][2];
  }
  for (auto& row : out) row[3] = -(row[0] * t[0] + row[1] * t[1] + row[2] * t[2]);
}

/// row (X, Y, Z, 1)'
inline double dot(const double (&row)[4], const double* X) {
  return row[0] * X[0] + row[1] * X[1] + row[2] * X[2] + row[3];
}

}  // namespace projection_detail

template <std::size_t n_r>
Projection<n_r> make_projection(const Simple_intrinsics& K, const Rotation_model<n_r>& rotation, const double* t) {
  Projection<n_r> projection;
  projection_detail::project(K, rotation.R, t, projection.P);
  for (std::size_t j = 0; j < n_r; ++j) projection_detail::project(K, rotation.dR[j], t, projection.dP[j]);
  return projection;
}

/// Writes the two rows du/dx and dv/dx of one point X (3 coordinates), n_r + 3 entries each, one after the other
/// (docs/derivations.md, Eqs. 21 and 22). A point at w = 0 gives infinities or NaN, as its pixel does.
template <std::size_t n_r>
inline void write_pixel_rows(const Projection<n_r>& projection, const double* X, double* rows) {
  using projection_detail::dot;
  const auto& P = projection.P;
  double* du = rows;
  double* dv = rows + n_r + 3;

  const double n_u = dot(P[0], X);
  const double n_v = dot(P[1], X);
  const double inverse_w = 1.0 / dot(P[2], X);
  const double inverse_w_2 = inverse_w * inverse_w;
  for (std::size_t j = 0; j < n_r; ++j) {
    const auto& dP = projection.dP[j];
    const double dw = dot(dP[2], X);
    du[j] = dot(dP[0], X) * inverse_w - n_u * dw * inverse_w_2;
    dv[j] = dot(dP[1], X) * inverse_w - n_v * dw * inverse_w_2;
  }
  for (std::size_t j = 0; j < 3; ++j) {  // dP/dt_j is minus column j of P
    du[n_r + j] = n_u * P[2][j] * inverse_w_2 - P[0][j] * inverse_w;
    dv[n_r + j] = n_v * P[2][j] * inverse_w_2 - P[1][j] * inverse_w;
  }
}

/// Writes the three rows dp1/dx, dp2/dx, dp3/dx of one point X (3 coordinates) seen from the centre t, n_r + 3 entries
/// each (docs/derivations.md, Eq. 23): p = M (X - t) is not divided by anything, so the rows are linear in the point.
template <std::size_t n_r>
inline void write_bearing_rows(const Projection<n_r>& projection, const double* X, const double* t, double* rows) {
  const double D[3] = {X[0] - t[0], X[1] - t[1], X[2] - t[2]};
  for (int i = 0; i < 3; ++i, rows += n_r + 3) {
    for (std::size_t j = 0; j < n_r; ++j) {
      const auto& dM = projection.dP[j][i];
      rows[j] = dM[0] * D[0] + dM[1] * D[1] + dM[2] * D[2];
    }
    for (std::size_t j = 0; j < 3; ++j) rows[n_r + j] = -projection.P[i][j];
  }
}
