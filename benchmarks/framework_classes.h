// SPDX-License-Identifier: BSD-3-Clause
// The published C++ classes as competitors.
#pragma once

#include "benchmarks/competitor.h"

namespace bench {

/// fw::Linear_taylor_solver over the camera's classes: every matrix exists as a whole, and is solved by the engine's
/// least squares.
Entry framework();
/// The same with cv::solve on the whole Jacobian.
Entry literal();

}  // namespace bench
