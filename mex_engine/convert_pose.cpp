// SPDX-License-Identifier: BSD-3-Clause
// value = kelvane_engine('pose', value, form, frame, new_form, new_frame)
#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/pose_forms.h"

namespace kelvane::mex_engine {
namespace {

class Pose_answer final : public Answer {
 public:
  explicit Pose_answer(const Inputs& inputs)
      : given_(read_pose(inputs[0], text_in(inputs[1], "The form"), text_in(inputs[2], "The frame"))) {
    const std::string form = text_in(inputs[3], "The new form");
    if (form.empty()) return;
    form_ = &pose_form(form);
    frame_ = frame_of(*form_, text_in(inputs[4], "The new frame"));
  }

  void write(int /*num_outputs*/, mxArray* outputs[]) const override {
    outputs[0] = form_ != nullptr ? written_pose(given_.pose, *form_, frame_)
                                  : written_struct(given_.pose, given_.form->name, name_of(given_.frame));
  }

 private:
  Given_pose given_;
  const Pose_form* form_ = nullptr;
  Pose_frame frame_ = Pose_frame::world_from_camera;
};

}  // namespace

std::unique_ptr<Answer> convert_pose(const Inputs& inputs) { return std::make_unique<Pose_answer>(inputs); }

}  // namespace kelvane::mex_engine
