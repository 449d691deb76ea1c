// SPDX-License-Identifier: BSD-3-Clause
// The options of a refinement or an estimate as hosts hand them over.
#pragma once

#include <mex.h>

#include <cstddef>
#include <string>

#include "pose_estimation/estimate.h"
#include "pose_refinement/refine.h"
#include "pose_refinement/words.h"

namespace kelvane::mex_engine {

/// Names and numbers as hosts tell them.
inline constexpr Words words{1, "StepTolerance", "FunctionTolerance", "MaxIterations", "LossScale", "OutputFcn"};

/// What a struct of options says, with empty texts and null for what it leaves open.
struct Given_options {  // NOLINT(bugprone-exception-escape): moving its texts throws nothing
  Refine_options refine;
  Estimate_options estimate;  ///< but for max_error, which depends on the camera
  double max_pixels = 0, max_angle = 0;
  const mxArray* weights = nullptr;
  const mxArray* covariances = nullptr;
  const mxArray* prior = nullptr;
  const mxArray* fixed = nullptr;
  std::string pose_form, pose_frame;
  std::string output_form, output_frame;
  bool is_stopped = false;  ///< a refinement on the way shall end
};

/// From a struct of one element. Throws Bad_argument.
Given_options read_options(const mxArray* options);

}  // namespace kelvane::mex_engine
