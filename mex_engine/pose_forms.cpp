// SPDX-License-Identifier: BSD-3-Clause
// Names of forms and frames.
#include "mex_engine/pose_forms.h"

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

constexpr const char* world_from_camera = "world_from_camera";
constexpr const char* camera_from_world = "camera_from_world";

constexpr Pose_form forms[] = {
    {"matrix4x4", "a 4 x 4 matrix [Q, s; 0 0 0 1]", nullptr},
    {"matrix3x4", "a 3 x 4 matrix [Q, s]", nullptr},
    {"rotation_centre", "a cell {Q, centre}: 3 x 3 and 3 elements", nullptr},
    {"rotation_translation", "a cell {Q, s}: 3 x 3 and 3 elements", nullptr},
    {"rotation_vector", "a vector [r, s] of 6 elements", nullptr},
    {"axis_angle", "a vector [axis, angle, s] of 7 elements", nullptr},
    {"quaternion_xyzw", "a vector [qx, qy, qz, qw, s] of 7 elements", nullptr},
    {"quaternion_wxyz", "a vector [qw, qx, qy, qz, s] of 7 elements", nullptr},
    {"opencv", "a cell {rvec, tvec} of 3 elements each", camera_from_world},
    {"colmap", "a cell {qvec, tvec}: 4 (w first) and 3 elements", camera_from_world},
    {"rigidtform3d", "an object of MATLAB's class rigidtform3d", nullptr},
    {"pose", "a struct that kelvane_pose returned", world_from_camera},
};

[[noreturn]] void refuse_guess(const mxArray* value, std::size_t rows, std::size_t columns) {
  if (mxIsCell(value)) {
    refuse("noForm",
           "A pose in two parts needs its form, as 'PoseForm' or second input of kelvane_pose: 'rotation_centre', "
           "'rotation_translation', 'opencv' or 'colmap'.");
  }
  refuse("noForm", "A " + text_of_size(rows, columns) + " array of class " + mxGetClassName(value) +
                       " is no pose. See the forms in the help of kelvane_pose.");
}

}  // namespace

const Pose_form& pose_form(std::string_view name) {
  for (const Pose_form& form : forms) {
    if (name == form.name) return form;
  }
  refuse("poseForm", quoted(std::string(name)) + " is not a form of a pose.");
}

bool is_struct(const Pose_form& form) { return form.name == std::string("pose"); }

const Pose_form& guessed_form(const mxArray* value) {
  if (has_field(value, "R") && has_field(value, "Translation")) return pose_form("rigidtform3d");
  if (mxIsStruct(value)) return pose_form("pose");
  const auto rows = static_cast<std::size_t>(mxGetM(value));
  const auto columns = static_cast<std::size_t>(mxGetN(value));
  if (mxIsNumeric(value)) {
    if (mxGetNumberOfDimensions(value) > 2) Host_numbers(value, "The pose");  // which tells of it
    if (rows == 4 && columns == 4) return pose_form("matrix4x4");
    if (rows == 3 && columns == 4) return pose_form("matrix3x4");
    if ((rows == 1 || columns == 1) && rows * columns == 6) return pose_form("rotation_vector");
    if ((rows == 1 || columns == 1) && rows * columns == 7) {
      refuse("noForm",
             "Seven numbers can be an axis and angle or a quaternion. Say which, as 'PoseForm' or second input of "
             "kelvane_pose: 'axis_angle', 'quaternion_xyzw' or 'quaternion_wxyz'.");
    }
  }
  refuse_guess(value, rows, columns);
}

Pose_frame frame_of(const Pose_form& form, const std::string& name) {
  if (name.empty() && form.frame == nullptr) {
    refuse("noFrame", std::string("Say which way the pose of form '") + form.name +
                          "' maps: 'camera_from_world' (p = Q * X + s) or 'world_from_camera' (X = Q * p + s), as "
                          "'PoseFrame' or third input of kelvane_pose.");
  }
  const std::string& wanted = name.empty() ? form.frame : name;
  if (wanted != world_from_camera && wanted != camera_from_world) refuse("frame", quoted(wanted) + " is not a frame.");
  if (form.frame != nullptr && wanted != form.frame) {
    refuse("frame", std::string("A pose of form '") + form.name + "' is always '" + form.frame + "'.");
  }
  return wanted == world_from_camera ? Pose_frame::world_from_camera : Pose_frame::camera_from_world;
}

const char* name_of(Pose_frame frame) {
  return frame == Pose_frame::world_from_camera ? world_from_camera : camera_from_world;
}

}  // namespace kelvane::mex_engine
