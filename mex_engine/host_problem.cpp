// SPDX-License-Identifier: BSD-3-Clause
// Reading in the order in which errors are told.
#include "mex_engine/host_problem.h"

#include "mex_engine/read_camera.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

Numbers numbers_of(const Columns& columns) { return {columns.numbers.data(), columns.numbers.size()}; }

/// Whether two points may do.
bool has_known(const Given_options& options) { return options.prior != nullptr || options.fixed != nullptr; }

Camera_model camera_for(const mxArray* intrinsics, std::size_t d) {
  const Camera_model camera = read_camera(intrinsics);
  if (camera.sees_directions != (d == 3)) {
    refuse("intrinsics", "With " + text(d) + " x N observations the intrinsics must be " +
                             (d == 3 ? "[]" : "[f cx cy], K, cameraIntrinsics or a struct of kelvane_camera") + ".");
  }
  return camera;
}

/// In place of a start: any pose, in the form that a start would have had.
Given_pose no_pose(const Given_options& options) {
  const Pose_form& form = pose_form(options.pose_form.empty() ? "pose" : options.pose_form);
  const bool has_frame = !options.pose_form.empty() && !is_struct(form);
  return {{}, &form, has_frame ? frame_of(form, options.pose_frame) : Pose_frame::world_from_camera};
}

}  // namespace

Host_problem::Host_problem(const Given_inputs& inputs, const Given_options& options)
    : options_(options),
      has_start_(inputs.start != nullptr),
      start_(has_start_ ? read_raw_pose(inputs.start, options.pose_form, options.pose_frame) : no_pose(options)),
      observations_(
          read_observations(inputs.observations, has_known(options) || !has_start_ ? inputs.points : nullptr)),
      points_(read_points(inputs.points, observations_)),
      has_camera_struct_(is_camera_struct(inputs.intrinsics)) {
  const Camera_model camera = camera_for(inputs.intrinsics, observations_.numbers.rows());
  problem_ = {start_.pose, numbers_of(points_), numbers_of(observations_), camera};
  if (has_start_) read_known(inputs.start);
  if (!has_start_ && options.fixed != nullptr) refuse("option", "Fixed needs pose0, of which it keeps directions.");
  choose_output();
}

void Host_problem::read_known(const mxArray* given_start) {
  if (options_.weights != nullptr) {
    weights_ = read_weights(options_.weights, observations_);
    problem_.weights = numbers_of(*weights_);
  }
  known_.emplace(options_, given_start, start_, observations_, problem_);
}

void Host_problem::choose_output() {
  output_form_ = options_.output_form.empty() ? start_.form : &pose_form(options_.output_form);
  const bool keeps_frame =
      options_.output_frame.empty() && (output_form_ == start_.form || output_form_->frame == nullptr);
  output_frame_ = keeps_frame ? start_.frame : frame_of(*output_form_, options_.output_frame);
}

std::string Host_problem::message_of(const Bad_argument& error) const {
  std::string message = Known::message_of(error, observations_);
  if (!message.empty()) return message;
  const Columns* const columns = error.name() == "points"         ? &points_
                                 : error.name() == "observations" ? &observations_
                                 : error.name() == "weights"      ? &*weights_
                                                                  : nullptr;
  const char* const name = columns != nullptr ? columns->numbers.name() : error.name().c_str();
  if (columns == nullptr || error.where() == Bad_argument::Where::whole) return name + error.sentence();
  return place_of(error, name, *columns) + error.sentence();
}

}  // namespace kelvane::mex_engine
