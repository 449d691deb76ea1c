// SPDX-License-Identifier: BSD-3-Clause
// Those that take part, ours and others'.
#pragma once

#include "benchmarks/race.h"
#include "mex.h"

namespace bench {

/// What a refinement is asked to do.
struct Method {
  double loss_scale = 0;      ///< of Huber's loss, pixels; 0: least squares
  int max_iterations = 10;    ///< all of them, unless there is a tolerance
  double step_tolerance = 0;  ///< 0: none
};

/// A whole call of mexFunction in the stand-in host, ten iterations: checks, copies, result, and the host's part of it.
Contestant module_call(const std::string& name, decltype(&mexFunction) entry, const Scene& scene);
/// The same of a file built for a host. Throws std::runtime_error when it cannot be loaded.
decltype(&mexFunction) loaded_module(const std::string& file);
/// kelvane::refine, with its covariance and all else that it tells.
Contestant engine(const Scene& scene, const Method& method);

/// cv::solvePnPRefineLM and cv::solvePnPRefineVVS, ten iterations.
Contestant opencv_lm(const Scene& scene);
Contestant opencv_vvs(const Scene& scene);
/// ceres::Solve: one dense block, or one for each point with its loss.
Contestant ceres_solver(const Scene& scene, const Method& method);
/// ceres::TinySolver, with residuals reweighted by hand where there is a loss.
Contestant tiny_solver(const std::string& name, const Scene& scene, const Method& method);
/// The same source compiled with -march=native, in a library that shows nothing else.
__attribute__((visibility("default"))) Contestant tiny_solver_native(const std::string& name, const Scene& scene,
                                                                     const Method& method);

/// A pose without a start, among wrong observations.
struct Estimated {
  bool is_claimed = false;           ///< the estimator says that the pose may be used
  std::vector<kelvane::Pose> poses;  ///< none, one, or two of which either may be right
};

struct Estimator {
  std::string name;
  std::function<Estimated(const Scene& scene)> estimate;
};

/// cv::solvePnPRansac with its default of 8 pixels: as it is called, UsacParams with its 5,000 trials, and all flags
/// with its 100, then with 10,000 and a confidence of 0.9999. The first four are those of the short table.
std::vector<Estimator> opencv_estimators();

/// Tables of so many scenes a row: points in a volume and a noise of 1 pixel, or all shapes, noises and estimators.
void print_estimates(unsigned num_scenes, bool all, std::ostream& out);

}  // namespace bench
