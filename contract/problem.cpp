// SPDX-License-Identifier: BSD-3-Clause
// Targets and steps of a call.
#include "contract/problem.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace kelvane::contract {
namespace {

/// Bearing types take their target in the layout of pixels: the first two rows of the observations as pairs (u, v),
/// point by point, so that the last third is zero.
std::vector<double> bearing_target(const Arguments& arguments) {
  if (!arguments.type->is_bearing()) return {};
  std::vector<double> target(static_cast<std::size_t>(arguments.num_equations()), 0.0);
  for (std::size_t i = 0; i < target.size() / 3; ++i) {
    std::copy_n(arguments.observations + 3 * i, 2, &target[2 * i]);
  }
  return target;
}

}  // namespace

Problem::Problem(const Arguments& arguments)
    : x0(arguments.camera_parameters, arguments.camera_parameters + arguments.type->num_dimensions()),
      arguments_(arguments),
      bearing_target_(bearing_target(arguments)),
      data_(arguments.points, bearing_target_.empty() ? arguments.observations : bearing_target_.data(),
            static_cast<std::size_t>(arguments.type->observation_size), arguments.weights,
            static_cast<std::size_t>(arguments.type->num_representations),
            static_cast<std::size_t>(arguments.num_points)) {
  constexpr double translation_step = 0.01;
  std::fill(std::begin(difference_steps), std::end(difference_steps), translation_step);
  std::fill_n(difference_steps, arguments.type->rotation_size(), arguments.type->difference_step());
}

Pose_problem Problem::equations(bool is_analytic) const {
  const double* k = arguments_.camera_parameters + arguments_.type->num_dimensions();  // k11, k13, k23
  return {arguments_.type, {k[0], k[1], k[2]}, &data_, is_analytic ? nullptr : difference_steps};
}

}  // namespace kelvane::contract
