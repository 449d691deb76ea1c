// SPDX-License-Identifier: BSD-3-Clause
// The forms in which hosts write a pose: read, and written.
#pragma once

#include <mex.h>

#include <string>
#include <string_view>

#include "pose_refinement/pose.h"

namespace kelvane::mex_engine {

/// A form by its public name, and what it looks like.
struct Pose_form {
  const char* name;
  const char* looks;
  const char* frame;  ///< that it implies, or null
};

/// Throws Bad_argument, poseForm, where there is none of the name.
const Pose_form& pose_form(std::string_view name);
/// Whether it is the struct of kelvane_pose.
bool is_struct(const Pose_form& form);
/// The one that class and size leave no doubt about. Throws Bad_argument, noForm, that lists what it may be otherwise.
const Pose_form& guessed_form(const mxArray* value);

/// The frame of a form: the named one, or the one that it implies where no name is given. Throws Bad_argument, noFrame
/// or frame.
Pose_frame frame_of(const Pose_form& form, const std::string& name);
const char* name_of(Pose_frame frame);

/// A pose as it was handed over.
struct Given_pose {
  Pose pose;
  const Pose_form* form;
  Pose_frame frame;
};

/// Form and frame by their names, both of which may be empty. Throws Bad_argument.
Given_pose read_pose(const mxArray* value, const std::string& form, const std::string& frame);
/// The same, but a struct's rotation as it stands: a refinement takes the nearest one itself, and twice is not once to
/// the last bit.
Given_pose read_raw_pose(const mxArray* value, const std::string& form, const std::string& frame);

/// A pose in a form, of "rigidtform3d" as a cell of its parts. Calls the host alone, and owns nothing: a host's error
/// may leave it anywhere.
mxArray* written_pose(const Pose& pose, const Pose_form& form, Pose_frame frame);
/// The struct of kelvane_pose with the form and frame that it is told to come from.
mxArray* written_struct(const Pose& pose, const char* form, const char* frame);

}  // namespace kelvane::mex_engine
