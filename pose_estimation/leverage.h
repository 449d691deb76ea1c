// SPDX-License-Identifier: BSD-3-Clause
// How much of what is known of a pose each point tells.
#pragma once

#include <vector>

#include "pose_refinement/refine.h"

namespace kelvane {

/// Of each point of a refined problem, 0 to 1: the part of the information that it alone gives on the direction of the
/// pose of which it tells most. Without a point of leverage h that direction is 1 / sqrt(1 - h) times as uncertain.
std::vector<double> leverages(const Refine_problem& problem, const Refine_result& refined);

}  // namespace kelvane
