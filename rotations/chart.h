// SPDX-License-Identifier: BSD-3-Clause
// From small turns and shifts of the camera to the parameters of a pose.
#pragma once

#include <cstddef>

#include "rotations/rotation_models.h"

namespace kelvane {

/// The derivative T of a twist (v, omega) of the camera frame by the parameters (r, t) of a pose, where R is a rotation
/// whose derivatives are turns: v = R' dt and omega = W dr (docs/derivations.md, Eqs. 46 and 47).
struct Chart {
  Rotation_model model;
  double W[3][4];  ///< column j: omega per unit of r_j; those from model.n on are rubbish

  /// Makes W of the model. False where there is none: the model does not turn, or something is not finite.
  bool make();
};

/// The shortest dr with W dr = omega, where W is plainly of rank 3 (its condition is below 1e8); false where it is not.
bool turn_parameters(const Chart& chart, const double* omega, double* dr);
/// The dt of a shift v of the camera frame: R v.
void shift_parameters(const Chart& chart, const double* v, double* dt);

/// A column of T: three entries are zero, a parameter either shifts or turns.
struct Chart_column {
  std::size_t first;  ///< of the other three: 0 (v) or 3 (omega)
  double entries[3];
};

/// Column j of T, less than n + 3.
Chart_column column_of(const Chart& chart, std::size_t j);

}  // namespace kelvane
