// SPDX-License-Identifier: BSD-3-Clause
// Who estimates a pose without a start.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "benchmarks/estimation_scene.h"

namespace bench {

struct Estimated {
  bool is_claimed = false;           ///< the estimator says that the pose may be used
  std::vector<kelvane::Pose> poses;  ///< none, one, or two of which either may be right
};

struct Estimator {
  std::string name;
  std::function<Estimated(const Estimation_scene& scene, double max_error)> estimate;
};

/// cv::solvePnPRansac: the default call, other flags with its 100 trials, UsacParams with its 5,000, and flags with
/// 10,000 trials and a confidence of 0.9999.
std::vector<Estimator> opencv_estimators();

}  // namespace bench
