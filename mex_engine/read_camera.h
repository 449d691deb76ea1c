// SPDX-License-Identifier: BSD-3-Clause
// Intrinsics as hosts write them.
#pragma once

#include <mex.h>

#include <optional>
#include <vector>

#include "cameras/lens.h"
#include "mex_engine/host_numbers.h"
#include "pose_refinement/camera_model.h"

namespace kelvane::mex_engine {

/// Whether it is the struct of kelvane_camera.
bool is_camera_struct(const mxArray* intrinsics);
/// [f cx cy], [fx fy cx cy], K, the struct of kelvane_camera, a struct with the fields of MATLAB's cameraIntrinsics or
/// cameraParameters, or [] for directions, which have no lens. Throws Bad_argument.
std::optional<Lens> read_lens(const mxArray* intrinsics);
/// The same where pixels are needed.
Lens read_lens_of_pixels(const mxArray* intrinsics);
/// The same as a refinement takes it.
Camera_model read_camera(const mxArray* intrinsics);

/// A vector of any number of finite numbers, or [].
std::vector<double> read_vector(const mxArray* array, const char* name);

}  // namespace kelvane::mex_engine
