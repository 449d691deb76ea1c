// SPDX-License-Identifier: BSD-3-Clause
// The check of a refinement's options.
#pragma once

#include "pose_refinement/refine.h"

namespace kelvane {

/// Throws std::invalid_argument, with a sentence that names the option.
void check(const Refine_options& options);

}  // namespace kelvane
