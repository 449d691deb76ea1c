// SPDX-License-Identifier: BSD-3-Clause
// Each representation's rotation matrix and its derivatives at one point.
#pragma once

#include <cstddef>

/// R and its n_r partial derivatives: dR[j] = dR / dr_j. R maps the camera frame to the world.
template <std::size_t n_r>
struct Rotation_model {
  double R[3][3];        ///< R[i][j] is row i, column j
  double dR[n_r][3][3];  ///< dR[j] = dR / dr_j
};

/// Rotation vector r, 3 entries in radians (docs/derivations.md, Eqs. 8 to 11). r = 0 is replaced by (1e-9, 1e-9,
/// 1e-9); any other r is taken as it is; below a length of about 1e-154 its square underflows and the derivatives are
/// not finite.
Rotation_model<3> rotation_vector_model(const double* r);

/// Axis a of any length but zero, and angle in radians: (a1, a2, a3, angle) (docs/derivations.md, Eqs. 12 to 14). The
/// axis is normalised inside; a zero axis gives NaN.
Rotation_model<4> angle_axis_model(const double* a);

/// Quaternion (x, y, z, w) of any length, divided by its squared norm (docs/derivations.md, Eqs. 15 and 16). A zero
/// vector part is replaced by (1e-9, 1e-9, 1e-9), whatever the scalar part.
Rotation_model<4> quaternion_model(const double* q);

/// Quaternion (x, y, z, w) taken as of unit length (docs/derivations.md, Eqs. 17 and 18): no norm factor, and the
/// entries of q enter the diagonal terms unsquared. This is a model of its own: away from special points R is no
/// rotation.
Rotation_model<4> unit_quaternion_model(const double* q);
