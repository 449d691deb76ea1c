// SPDX-License-Identifier: BSD-3-Clause
// Problems that kelvane_engine refines, in every form of an input.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "mex_host.h"
#include "support/refined_problems.h"

namespace trust::engine {

/// What 'refine' takes of one problem.
struct Problem {
  mxArray start, points, observations, intrinsics, options;
};

inline mxArray matrix_of(const double (&matrix)[3][3]) {
  std::vector<double> values;
  for (std::size_t j = 0; j < 3; ++j) {
    for (std::size_t i = 0; i < 3; ++i) values.push_back(matrix[i][j]);
  }
  return mex_host::real_matrix(3, 3, std::move(values));
}

inline mxArray transposed(const mxArray& matrix) {
  mxArray result = mex_host::real_matrix(matrix.columns, matrix.rows, matrix.values);
  for (std::size_t i = 0; i < matrix.values.size(); ++i) {
    result.values[i % matrix.rows * matrix.columns + i / matrix.rows] = matrix.values[i];
  }
  return result;
}

inline mxArray with_field(mxArray structure, const std::string& name, mxArray value) {
  structure.field_names.push_back(name);
  structure.elements.push_back({std::move(value)});
  return structure;
}

/// Of a refinement, each field a text, or a number, or left open.
inline mxArray options(const std::string& form, const std::string& frame, const std::string& loss, mxArray weights) {
  using mex_host::text;
  const mxArray open = mex_host::row({});
  return mex_host::structure({{"PoseForm", text(form)},
                              {"PoseFrame", text(frame)},
                              {"OutputForm", text("")},
                              {"OutputFrame", open},
                              {"MaxIterations", mex_host::scalar(50)},
                              {"StepTolerance", mex_host::scalar(1e-9)},
                              {"FunctionTolerance", mex_host::scalar(0)},
                              {"Weights", std::move(weights)},
                              {"Loss", text(loss)},
                              {"LossScale", open},
                              {"NoiseSigma", open},
                              {"Stop", open}});
}

inline constexpr std::array<const char*, 4> kinds_of_problem{"pose and K", "vector and directions",
                                                             "cell and cameraIntrinsics", "rigidtform3d in rows"};

/// One of these kinds.
inline Problem good_problem(std::size_t kind, std::size_t num_points) {
  using mex_host::scalar;
  support::Random random(7 + static_cast<unsigned>(kind));
  const bool sees_directions = kind == 1;
  const support::Refined_problem scene = support::random_scene(random, num_points, sees_directions, 0.01);
  const mxArray points = mex_host::real_matrix(3, num_points, scene.points);
  const mxArray seen = mex_host::real_matrix(scene.d(), num_points, scene.observations);
  const mxArray rotation = matrix_of(scene.start.rotation);
  const mxArray centre = mex_host::column({scene.start.centre[0], scene.start.centre[1], scene.start.centre[2]});
  const mxArray K = mex_host::real_matrix(3, 3, {800, 0, 0, 12, 650, 0, 320, 240, 1});
  const mxArray weights = mex_host::row(std::vector<double>(num_points, 2.0));
  const auto identity = [](std::size_t n, double size) {
    std::vector<double> values(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) values[(n + 1) * i] = size;
    return mex_host::real_matrix(n, n, values);
  };
  switch (kind) {
    case 0:
      return {mex_host::structure({{"rotation", rotation}, {"centre", centre}}), points, seen, K,
              options("", "", "huber", weights)};
    case 1:
      return {mex_host::row({0.36, -0.45, 0.17, 0.3, -0.3, -3.7}), points, seen, mex_host::row({}),
              with_field(options("rotation_vector", "world_from_camera", "none", mex_host::row({})),
                         "ObservationCovariance", identity(3, 4.0))};
    case 2:
      return {mex_host::cell({rotation, centre}), points, seen,
              mex_host::structure({{"FocalLength", mex_host::row({800, 650})},
                                   {"PrincipalPoint", mex_host::row({320, 240})},
                                   {"Skew", scalar(12)},
                                   {"RadialDistortion", mex_host::row({0, 0})},
                                   {"TangentialDistortion", mex_host::row({0, 0})}}),
              options("rotation_centre", "world_from_camera", "tukey",
                      mex_host::real_matrix(2, num_points, std::vector<double>(2 * num_points, 3.0)))};
    default:
      return {mex_host::structure({{"R", rotation}, {"Translation", mex_host::row(centre.values)}}), transposed(points),
              transposed(seen), mex_host::row({800, 650, 320, 240}),
              with_field(with_field(options("rigidtform3d", "world_from_camera", "cauchy", mex_host::row({})), "Prior",
                                    mex_host::structure(
                                        {{"pose", mex_host::structure({{"rotation", rotation}, {"centre", centre}})},
                                         {"covariance", identity(6, 1.0)}})),
                         "Fixed", mex_host::real_matrix(6, 1, {0, 0, 0, 0, 0, 1}))};
  }
}

}  // namespace trust::engine
