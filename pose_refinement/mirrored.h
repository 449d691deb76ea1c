// SPDX-License-Identifier: BSD-3-Clause
// Other poses from which a flat target looks the same, or nearly so.
#pragma once

#include <vector>

#include "pose_refinement/refine_input.h"

namespace kelvane {

/// A pose behind which the points lie has a counterpart that sees them in front: reflected in the plane that is nearest
/// to the points, with p turned into -p. Points in that plane have the same pixels. Both poses are of the data's world.
Pose mirrored(const Pose& pose, const Observed_points& data);

/// The pose from which the target is seen tilted the other way about the line of sight to its middle. From afar a flat
/// target has the same pixels there (docs/derivations.md, Eq. 59).
/// `pulls` are what a loss leaves of the points' weights, or empty.
Pose tilted(const Pose& pose, const Observed_points& data, const std::vector<double>& pulls);

/// Whether points that stand out of a plane stand out by no more than this as the camera of a pose sees it: root mean
/// square of what projecting them onto the plane changes in their residuals, with weights. NaN for a limit is none.
bool is_seen_flat(const Pose& pose, const Refine_input& input, const std::vector<double>& pulls, double most);

}  // namespace kelvane
