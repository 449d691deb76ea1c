// SPDX-License-Identifier: BSD-3-Clause
// The photographs of a model as refinement problems.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mex_engine/answer.h"
#include "pose_refinement/pose.h"

namespace kelvane::mex_engine {

/// One photograph.
struct Model_view {
  std::string name;
  double id = 0;
  Pose pose;
  std::size_t num_points = 0;
  double K[4] = {1, 1, 0, 0};  ///< fx, fy, cx, cy
  double image_size[2] = {0, 0};
};

/// All of a file.
struct Model_views {
  std::vector<Model_view> views;
  bool has_image_sizes = false;
  std::vector<std::string> warnings;  ///< identifier without "kelvane:", sentence, identifier, ...
  /// Writes three, two and one number for each point of a view; neither throws nor calls the host.
  std::function<void(std::size_t view, double* points, double* observations, double* point_ids)> put_points;
};

/// As a struct of arrays, of which each has a column or an element for each view. matlab/private/view_problems.m takes
/// it apart.
std::unique_ptr<Answer> answer_of(Model_views views);

}  // namespace kelvane::mex_engine
