// SPDX-License-Identifier: BSD-3-Clause
// One problem of the host.
#pragma once

#include <optional>
#include <string>

#include "mex_engine/pose_forms.h"
#include "mex_engine/read_known.h"
#include "mex_engine/read_options.h"
#include "mex_engine/read_points.h"

namespace kelvane::mex_engine {

/// The inputs of kelvane_refine or, without a start, of kelvane_estimate.
struct Given_inputs {
  const mxArray* start;  ///< null for an estimate
  const mxArray* points;
  const mxArray* observations;
  const mxArray* intrinsics;
};

/// What a problem is read into. It points into itself.
class Host_problem {
 public:
  /// Throws Bad_argument. All must outlive it.
  Host_problem(const Given_inputs& inputs, const Given_options& options);
  Host_problem(const Host_problem&) = delete;
  Host_problem& operator=(const Host_problem&) = delete;

  const Refine_problem& problem() const { return problem_; }
  bool has_start() const { return has_start_; }
  const Given_options& options() const { return options_; }
  const Columns& points() const { return points_; }
  const Columns& observations() const { return observations_; }
  /// Whether the intrinsics, as they were handed over, are the struct of kelvane_camera.
  bool has_camera_struct() const { return has_camera_struct_; }

  /// The sentence of an error of the refinement, with the host's names and numbers.
  std::string message_of(const Bad_argument& error) const;
  /// A pose in its output form. Owns nothing, see written_pose.
  mxArray* written(const Pose& pose) const { return written_pose(pose, *output_form_, output_frame_); }
  /// Whether the start, as it was handed over, is in the output form.
  bool is_start_in_output_form() const { return start_.form == output_form_ && start_.frame == output_frame_; }
  bool is_output_struct() const { return is_struct(*output_form_); }

 private:
  void read_known(const mxArray* given_start);
  void choose_output();

  const Given_options& options_;
  const bool has_start_;
  Given_pose start_;
  Columns observations_, points_;
  std::optional<Columns> weights_;
  std::optional<Known> known_;
  bool has_camera_struct_;
  Refine_problem problem_;
  const Pose_form* output_form_ = nullptr;
  Pose_frame output_frame_ = Pose_frame::world_from_camera;
};

}  // namespace kelvane::mex_engine
