// SPDX-License-Identifier: BSD-3-Clause
// Intrinsics as hosts write them.
#pragma once

#include <mex.h>

#include "pose_refinement/camera_model.h"

namespace kelvane::mex_engine {

/// [f cx cy], [fx fy cx cy], K, a struct with the fields of MATLAB's cameraIntrinsics, or [] for directions. Throws
/// Bad_argument.
Camera_model read_camera(const mxArray* intrinsics);

}  // namespace kelvane::mex_engine
