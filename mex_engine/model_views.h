// SPDX-License-Identifier: BSD-3-Clause
// The photographs of a model as refinement problems.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mex_engine/answer.h"
#include "mex_engine/host_camera.h"
#include "pose_refinement/pose.h"

namespace kelvane::mex_engine {

/// One photograph.
struct Model_view {
  std::string name;
  double id = 0;
  Pose pose;
  std::size_t num_points = 0;
  std::size_t camera = 0;  ///< in Model_views::cameras
};

/// All of a file.
struct Model_views {
  std::vector<Pictured_camera> cameras;
  std::vector<Model_view> views;
  std::vector<std::string> warnings;  ///< identifier without "kelvane:", sentence, identifier, ...
  /// Writes three, two and one number for each point of a view; neither throws nor calls the host.
  std::function<void(std::size_t view, double* points, double* observations, double* point_ids)> put_points;
};

/// As a struct of arrays, of which each has a column or an element for each view; `camera` counts from 1 in the
/// structs `cameras`. matlab/private/view_problems.m takes it apart.
std::unique_ptr<Answer> answer_of(Model_views views);

}  // namespace kelvane::mex_engine
