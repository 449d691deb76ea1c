// SPDX-License-Identifier: BSD-3-Clause
// By name.
#include "mex_engine/answer.h"

#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

struct Question {
  const char* name;
  int least_inputs, most_inputs;  // behind the name
  int most_outputs;
  std::unique_ptr<Answer> (*answer)(const Inputs&);
};

constexpr Question questions[] = {
    {"refine", 5, 8, 1, refine_poses},
    {"descend", 5, 8, 1, descend},
    {"estimate", 4, 7, 1, estimate_poses},
    {"search", 4, 7, 1, search_poses},
    {"project", 3, 4, 3, project_points},
    {"pose", 1, 5, 1, convert_pose},
    {"camera", 1, 4, 2, describe_camera},
    {"camera_as", 2, 2, 3, convert_camera},
    {"undistort", 3, 3, 2, undistort_pixels},
    {"distort", 2, 2, 2, distort_pixels},
    {"read_colmap", 1, 2, 1, read_colmap_model},
    {"read_bal", 1, 1, 1, read_bal_file},
    {"write_colmap", 4, 4, 1, write_colmap_model},
    {"write_bal", 4, 4, 1, write_bal_file},
    {"write_file", 2, 2, 1, write_text_file},
};

const Question& question_of(const mxArray* name) {
  const std::string wanted = text_in(name, "The first input");
  for (const Question& question : questions) {
    if (wanted == question.name) return question;
  }
  refuse("inputs", "There is no " + quoted(wanted) + " to ask for.");
}

}  // namespace

std::unique_ptr<Answer> answer_to(int num_outputs, int num_inputs, const mxArray* const* inputs) {
  if (num_inputs < 1) refuse("inputs", "The first input must be the name of what to do.");
  const Question& question = question_of(inputs[0]);
  const Inputs rest{num_inputs - 1, inputs + 1};
  if (rest.count < question.least_inputs || rest.count > question.most_inputs) {
    refuse("inputs", std::string("'") + question.name + "' needs " + std::to_string(question.least_inputs) + " to " +
                         std::to_string(question.most_inputs) + " more inputs; there are " +
                         std::to_string(rest.count) + ".");
  }
  if (num_outputs > question.most_outputs) {
    refuse("outputs",
           std::string("Too many outputs: '") + question.name + "' has " + std::to_string(question.most_outputs) + ".");
  }
  return question.answer(rest);
}

}  // namespace kelvane::mex_engine
