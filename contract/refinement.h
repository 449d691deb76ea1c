// SPDX-License-Identifier: BSD-3-Clause
// One refinement, from accepted arguments to the refined search vector.
#pragma once

#include <vector>

#include "contract/argument_contract.h"

namespace kelvane::contract {

/// When a refinement stops, and how it differentiates.
struct Settings {
  int max_iters = 10;            ///< as fw::Solver::set_max_iters
  float min_x_step = 0.0F;       ///< as fw::Solver::set_min_x_step
  float min_y_step = -10000.0F;  ///< as fw::Solver::set_min_y_step
  bool is_analytic = true;       ///< derivatives in closed form, not by forward differences

  /// Those of a call: without criteria the values above. The first criterion is not used: where criteria are given, 3
  /// iterations are made for type 0 and 1 for every other type. All four can be changed afterwards.
  explicit Settings(const Arguments& arguments);
};

/// The refined search vector, in the units and order of the camera parameters: what one call of the module returns. The
/// arrays are read where they are. Errors from inside get the context of kelvane_mex.cpp, 2003, with the problem's
/// sizes.
std::vector<double> refine(const Arguments& arguments, const Settings& settings);

}  // namespace kelvane::contract
