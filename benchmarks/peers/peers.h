// SPDX-License-Identifier: BSD-3-Clause
// The solvers of others that this benchmark was built with.
#pragma once

#include <string>
#include <vector>

#include "benchmarks/competitor.h"

namespace bench {

// Each solves type 0 in ten iterations, without ever stopping early by a tolerance, on one thread.
Entry opencv_lm();     // cv::solvePnPRefineLM
Entry opencv_vvs();    // cv::solvePnPRefineVVS
Entry ceres_solver();  // ceres::Solve, one dense block
Entry tiny_solver();   // ceres::TinySolver
// The same source compiled with -march=native, in a library that shows nothing else.
__attribute__((visibility("default"))) Entry tiny_solver_for_this_cpu();

/// Those that were installed when this was built.
std::vector<Entry> found_peers();
/// One sentence about each library that was not.
std::vector<std::string> missing_peers();

}  // namespace bench
