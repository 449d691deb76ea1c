// SPDX-License-Identifier: BSD-3-Clause
// Rotation vectors between rotations, and how they change.
#pragma once

namespace kelvane {

/// w with to = from exp [w]x, no longer than pi, radians.
void turn_between(const double (&from)[3][3], const double (&to)[3][3], double* w);

/// J with exp [w + dw]x = exp [J dw]x exp [w]x to first order (docs/derivations.md, Eq. 55).
void left_jacobian(const double* w, double (&J)[3][3]);
/// Its inverse; w shorter than 2 pi.
void inverse_left_jacobian(const double* w, double (&J)[3][3]);

}  // namespace kelvane
