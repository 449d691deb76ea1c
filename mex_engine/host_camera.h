// SPDX-License-Identifier: BSD-3-Clause
// Cameras as the host gets them.
#pragma once

#include <mex.h>

#include <cstddef>
#include <string>

#include "cameras/lens.h"

namespace kelvane::mex_engine {

/// A camera and what it takes.
struct Pictured_camera {
  Lens lens;
  double image_size[2] = {0, 0};  ///< [width height], pixels; 0 where it is not known
};

/// Structs of kelvane_camera, 1 x n. Owns nothing: the host's functions may throw or jump.
mxArray* created_cameras(const Pictured_camera* cameras, std::size_t n);

/// From where on a lens that folds inside its picture sees nothing. The subject is what the sentence calls it.
std::string fold_sentence(const std::string& subject, const Lens& lens);

}  // namespace kelvane::mex_engine
