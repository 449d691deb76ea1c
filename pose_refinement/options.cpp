// SPDX-License-Identifier: BSD-3-Clause
// The ranges of the options.
#include "pose_refinement/options.h"

#include <cmath>

#include "pose_refinement/bad_argument.h"

namespace kelvane {
namespace {

[[noreturn, gnu::cold]] void refuse(const char* name, const char* wanted) {
  throw Bad_argument("option", std::string("options.") + name, std::string(" must be a number ") + wanted + ".");
}

void check_not_negative(double value, const char* name) {
  if (!(value >= 0.0)) refuse(name, "of 0 or more");
}

/// 0 stands for none.
void check_positive(double value, const char* name) {
  if (!(value >= 0.0 && std::isfinite(value))) refuse(name, "above 0 and finite");
}

}  // namespace

void check(const Refine_options& options) {
  check_not_negative(options.max_iterations, "max_iterations");
  check_not_negative(options.step_tolerance, "step_tolerance");
  check_not_negative(options.function_tolerance, "function_tolerance");
  check_positive(options.loss_scale, "loss_scale");
  check_positive(options.noise_sigma, "noise_sigma");
}

}  // namespace kelvane
