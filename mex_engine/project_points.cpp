// SPDX-License-Identifier: BSD-3-Clause
// [seen, J, depth] = kelvane_engine('project', pose, points, intrinsics, options)
#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/pose_forms.h"
#include "mex_engine/read_camera.h"
#include "mex_engine/read_points.h"
#include "mex_engine/sentence.h"
#include "pose_refinement/projection.h"

namespace kelvane::mex_engine {
namespace {

std::string option(const mxArray* options, const char* name) {
  const bool is_there = options != nullptr && has_field(options, name);
  return text_in(is_there ? field(options, 0, name) : nullptr, name);
}

class Projection final : public Answer {
 public:
  explicit Projection(const Inputs& inputs)
      : pose_(read_pose(inputs[0], option(inputs[3], "PoseForm"), option(inputs[3], "PoseFrame")).pose),
        points_(read_points(inputs[1])),
        camera_(read_camera(inputs[2])) {}

  void write(int num_outputs, mxArray* outputs[]) const override {
    const Host_numbers& points = points_.numbers;
    const std::size_t d = camera_.sees_directions ? 3 : 2;
    const auto n = static_cast<mwSize>(points.columns());
    const auto rows = static_cast<mwSize>(d * points.columns());
    double* numbers[3] = {};
    outputs[0] = mxCreateDoubleMatrix(static_cast<mwSize>(d), n, mxREAL);
    if (num_outputs > 1) outputs[1] = mxCreateDoubleMatrix(rows, 6, mxREAL);
    if (num_outputs > 2) outputs[2] = mxCreateDoubleMatrix(1, n, mxREAL);
    for (int i = 0; i < (num_outputs > 1 ? num_outputs : 1); ++i) numbers[i] = mxGetPr(outputs[i]);
    project(pose_, camera_, points.data(), points.columns(), numbers[0], numbers[1], numbers[2]);
  }

 private:
  Pose pose_;
  Columns points_;
  Camera_model camera_;
};

}  // namespace

std::unique_ptr<Answer> project_points(const Inputs& inputs) { return std::make_unique<Projection>(inputs); }

}  // namespace kelvane::mex_engine
