// SPDX-License-Identifier: BSD-3-Clause
// The other pose from which a flat target looks the same.
#pragma once

#include "pose_refinement/observed_points.h"

namespace kelvane {

/// A pose behind which the points lie has a counterpart that sees them in front: reflected in the plane that is nearest
/// to the points, with p turned into -p. Points in that plane have the same pixels. Both poses are of the data's world.
Pose mirrored(const Pose& pose, const Observed_points& data);

}  // namespace kelvane
