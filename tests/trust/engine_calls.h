// SPDX-License-Identifier: BSD-3-Clause
// Calls that kelvane_engine accepts, of everything that it does and in every form of an input: what the tests here
// spoil.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "mex_host.h"
#include "trust/engine_problems.h"
#include "trust/tested_call.h"

namespace trust::engine {

inline constexpr double for_ever = std::numeric_limits<double>::infinity();

/// Inputs of 'refine', without states; each problem with its own options.
inline std::vector<mxArray> refine_inputs(const std::vector<Problem>& problems, double seconds = for_ever,
                                          double num_threads = 1.0) {
  std::array<std::vector<mxArray>, 5> columns;
  for (const Problem& problem : problems) {
    std::size_t i = 0;
    for (const mxArray* array :
         {&problem.start, &problem.points, &problem.observations, &problem.intrinsics, &problem.options}) {
      columns[i++].push_back(*array);
    }
  }
  using mex_host::cell;
  return {mex_host::text("refine"),
          cell(columns[0]),
          cell(columns[1]),
          cell(columns[2]),
          cell(columns[3]),
          cell(columns[4]),
          cell(std::vector<mxArray>(problems.size(), mex_host::row({}))),
          mex_host::scalar(seconds),
          mex_host::scalar(num_threads)};
}

/// Of 'descend', which are the same.
inline std::vector<mxArray> as_descent(std::vector<mxArray> inputs) {
  inputs[0] = mex_host::text("descend");
  return inputs;
}

/// Of 'estimate' or 'search', which have no starts and other options.
inline std::vector<mxArray> as_estimate(std::vector<mxArray> inputs, const char* question = "estimate") {
  using mex_host::scalar;
  using mex_host::text;
  inputs[0] = text(question);
  std::size_t k = 0;
  for (mxArray::Place& options : inputs[5].elements) {
    options[0] = mex_host::structure({{"MaxReprojectionError", k % 2 == 0 ? mex_host::row({}) : scalar(4)},
                                      {"MaxAngle", k % 2 == 0 ? scalar(0.02) : mex_host::row({})},
                                      {"Confidence", scalar(0.99)},
                                      {"MaxNumTrials", scalar(200)},
                                      {"Seed", scalar(static_cast<double>(k))},
                                      {"OutputForm", text(k % 2 == 0 ? "" : "colmap")},
                                      {"OutputFrame", mex_host::row({})},
                                      {"Stop", mex_host::row({})}});
    ++k;
  }
  inputs.erase(inputs.begin() + 1);
  return inputs;
}

/// Where states and seconds are among inputs that go on where they were left.
inline std::size_t place_of_states(const std::vector<mxArray>& inputs) {
  const bool is_estimate = !inputs.empty() && (mex_host::is_same(inputs[0], mex_host::text("estimate")) ||
                                               mex_host::is_same(inputs[0], mex_host::text("search")));
  return is_estimate ? 5 : 6;
}

/// A problem of this kind, and a neighbour that nothing is to touch.
inline Tested_call refine_call(std::size_t kind, std::size_t num_points = 5, double seconds = for_ever) {
  return {std::string("refine, ") + kinds_of_problem[kind],
          refine_inputs({good_problem(kind, num_points), good_problem(0, num_points)}, seconds)};
}

/// What the engine can be asked.
enum class Question {
  refine,
  project,
  pose,
  pose_as_struct,
  descend,
  lens,
  camera,
  undistort,
  distort,
  estimate,
  search
};
inline constexpr std::array<Question, 11> all_questions{
    Question::refine,  Question::project,  Question::pose,   Question::pose_as_struct,
    Question::descend, Question::lens,     Question::camera, Question::undistort,
    Question::distort, Question::estimate, Question::search};

/// A camera with a lens, another one for each kind.
inline mxArray good_camera(std::size_t kind) {
  using mex_host::row;
  using mex_host::text;
  switch (kind) {
    case 0:
      return mex_host::structure(
          {{"model", text("OPENCV")}, {"parameters", row({800, 650, 320, 240, -0.2, 0.05, 1e-3, -2e-3})}});
    case 1:
      return mex_host::structure(
          {{"model", text("THIN_PRISM_FISHEYE")},
           {"parameters", row({300, 310, 320, 240, 0.05, -0.01, 1e-3, 2e-3, 1e-3, 0, 1e-3, 0})}});
    case 2:
      return mex_host::structure({{"FocalLength", row({800, 650})},
                                  {"PrincipalPoint", row({320, 240})},
                                  {"Skew", mex_host::scalar(12)},
                                  {"RadialDistortion", row({-0.2, 0.05, 0.01})},
                                  {"TangentialDistortion", row({1e-3, 2e-3})}});
    default:
      return mex_host::structure({{"model", text("BAL")}, {"parameters", row({800, -0.1, 0.01})}});
  }
}

inline Tested_call good_call(Question question, std::size_t kind, std::size_t num_points) {
  using mex_host::text;
  if (question == Question::refine) return refine_call(kind, num_points);
  if (question == Question::descend) {
    return {std::string("descend, ") + kinds_of_problem[kind], as_descent(refine_call(kind, num_points).inputs)};
  }
  if (question == Question::estimate || question == Question::search) {
    const char* const verb = question == Question::estimate ? "estimate" : "search";
    return {std::string(verb) + ", " + kinds_of_problem[kind], as_estimate(refine_call(kind, num_points).inputs, verb)};
  }
  const Problem problem = good_problem(kind, num_points);
  const std::string name = kinds_of_problem[kind];
  const mxArray& form = mex_host::field(problem.options, "PoseForm");
  const mxArray& frame = mex_host::field(problem.options, "PoseFrame");
  switch (question) {
    case Question::project:
      return {"project, " + name,
              {text("project"), problem.start, problem.points, problem.intrinsics,
               mex_host::structure({{"PoseForm", form}, {"PoseFrame", frame}})},
              3};
    case Question::pose:
      return {"pose, " + name,
              {text("pose"), problem.start, form, frame, text("quaternion_wxyz"), text("camera_from_world")}};
    case Question::lens:
      return {"through a lens, " + name,
              {text("project"), problem.start, problem.points, good_camera(kind),
               mex_host::structure({{"PoseForm", form}, {"PoseFrame", frame}})},
              3};
    case Question::camera:
      if (kind % 2 == 1) return {"camera as, " + name, {text("camera_as"), good_camera(0), text("opencv")}, 3};
      return {"camera, " + name,
              {text("camera"), mex_host::row({800, 320, 240}), mex_host::row({-0.2, 0.05, 0, 0}), text("fisheye"),
               mex_host::row({640, 480})},
              2};
    case Question::undistort:
      return {"undistort, " + name,
              {text("undistort"), mex_host::real_matrix(2, 3, {320, 240, 100, 50, 600, 400}), good_camera(kind),
               text(kind == 0 ? "pixels" : "directions")},
              2};
    case Question::distort:
      return {"distort, " + name, {text("distort"), problem.points, good_camera(kind)}, 2};
    default:
      return {"pose as a struct, " + name, {text("pose"), problem.start, form, frame}};
  }
}

/// Everything, with every kind of input.
inline std::vector<Tested_call> good_calls(std::size_t num_points = 5) {
  std::vector<Tested_call> all;
  for (std::size_t kind = 0; kind < kinds_of_problem.size(); ++kind) {
    for (const Question question : all_questions) all.push_back(good_call(question, kind, num_points));
  }
  return all;
}

}  // namespace trust::engine
