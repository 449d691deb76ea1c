// SPDX-License-Identifier: BSD-3-Clause
// Each representation's rotation matrix and its derivatives at one point.
#pragma once

#include <algorithm>
#include <cstddef>

namespace kelvane {

/// R and its n partial derivatives: dR[j] = dR / dr_j. R maps the camera frame to the world.
struct Rotation_model {
  std::size_t n;       ///< 3 or 4
  bool turns;          ///< whether R is a rotation to rounding, so that every R' dR / dr_j is a turn, a skew matrix
  double R[3][3];      ///< R[i][j] is row i, column j
  double dR[4][3][3];  ///< dR[j] = dR / dr_j; those from n on are rubbish
};

/// Rotation vector r, 3 entries in radians (docs/derivations.md, Eqs. 8 to 11). r = 0 is replaced by (1e-9, 1e-9,
/// 1e-9); any other r is taken as it is; below a length of about 1e-154 its square underflows and the derivatives are
/// not finite.
void rotation_vector_model(const double* r, Rotation_model& model);

/// Axis a of any length but zero, and angle in radians: (a1, a2, a3, angle) (docs/derivations.md, Eqs. 12 to 14). The
/// axis is normalised inside; a zero axis gives NaN.
void angle_axis_model(const double* a, Rotation_model& model);

/// Quaternion (x, y, z, w) of any length, divided by its squared norm (docs/derivations.md, Eqs. 15 and 16). A zero
/// vector part is replaced by (1e-9, 1e-9, 1e-9), whatever the scalar part.
void quaternion_model(const double* q, Rotation_model& model);

/// Quaternion (x, y, z, w) taken as of unit length (docs/derivations.md, Eqs. 17 and 18): no norm factor, and the
/// entries of q enter the diagonal terms unsquared. This is a model of its own: away from special points R is no
/// rotation.
void unit_quaternion_model(const double* q, Rotation_model& model);

/// Has the model differentiated by n_other other parameters, whose derivatives F[i][j] = d(parameter i) / d(other j)
/// are given: dR / d(other j) = sum_i F_ij dR_i (docs/derivations.md, Eq. 31).
template <std::size_t n_r, std::size_t n_other>
void carry_over(const double (&F)[n_r][n_other], Rotation_model& model) {
  double dR[n_r][9];
  for (std::size_t i = 0; i < n_r; ++i) std::copy_n(&model.dR[i][0][0], 9, dR[i]);
  model.n = n_other;
  for (std::size_t j = 0; j < n_other; ++j) {
    double* sum = &model.dR[j][0][0];
    for (std::size_t k = 0; k < 9; ++k) sum[k] = F[0][j] * dR[0][k];
    for (std::size_t i = 1; i < n_r; ++i) {
      for (std::size_t k = 0; k < 9; ++k) sum[k] += F[i][j] * dR[i][k];
    }
  }
}

}  // namespace kelvane
