// SPDX-License-Identifier: BSD-3-Clause
// The check of a refinement's options.
#pragma once

#include "pose_refinement/refine.h"

namespace kelvane {

/// Throws Bad_argument, which names the option.
void check(const Refine_options& options);

}  // namespace kelvane
