// SPDX-License-Identifier: BSD-3-Clause
// Numbers of a pose in each form.
#include <algorithm>
#include <cmath>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/pose_forms.h"
#include "mex_engine/sentence.h"
#include "pose_refinement/motion.h"
#include "rotations/conversions.h"

namespace kelvane::mex_engine {
namespace {

/// Q and s of a form.
struct Parts {
  double Q[3][3];
  double s[3];
};

void set_translation(const double* s, Parts& parts) { std::copy_n(s, 3, parts.s); }

/// From the left three columns and rows of a matrix.
void copy_rotation(const Host_numbers& matrix, Parts& parts) {
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) parts.Q[i][j] = matrix(i, j);
  }
}

void copy_rotation(const mxArray* value, const char* name, Parts& parts) {
  const Host_numbers Q(value, name);
  Q.checked_finite();
  if (Q.rows() != 3 || Q.columns() != 3) {
    refuse("size", std::string(name) + " must be 3 x 3; this is " + text_of_size(Q.rows(), Q.columns()) + ".");
  }
  copy_rotation(Q, parts);
}

void set_rotation(const mxArray* value, const char* name, Parts& parts) {
  copy_rotation(value, name, parts);
  take_nearest_rotation(parts.Q, name);
}

void set_rotation_vector(const double* r, Parts& parts) { rotations::rot_vec_rad_to_rot_mat(r, parts.Q); }

void set_axis_angle(const double* a, Parts& parts) {
  constexpr double least = 1e-8;
  double axis[3];
  const double length = rotations::split_length(a, 3, axis);
  if (!(length >= least) && a[3] != 0.0) {
    refuse("zeroAxis",
           "An axis of length " + text_of(length, 2) + " has no direction to turn about by " + text_of(a[3]) + ".");
  }
  const double unit[] = {axis[0], axis[1], axis[2], a[3]};
  rotations::ang_axis_rad_to_rot_mat(unit, parts.Q);
}

/// The scalar comes first, or last.
void set_quaternion(const double* given, bool is_first, Parts& parts) {
  constexpr double least = 1e-10;
  double q[] = {given[0], given[1], given[2], given[3]};
  if (is_first) std::rotate(q, q + 1, q + 4);
  const double length = rotations::split_length(q, 4, q);
  if (!(length >= least)) {
    refuse("zeroQuaternion",
           "A quaternion of length " + text_of(length, 2) + " is no rotation; without a turn it is 1 and three zeros.");
  }
  rotations::quaternion_to_rot_mat(q, parts.Q);
}

Parts parts_of_matrix(const mxArray* value, std::size_t num_rows) {
  const Host_numbers T(value, "the pose");
  T.checked_finite();
  if (T.rows() != num_rows || T.columns() != 4) {
    refuse("size", "The pose must be " + text(num_rows) + " x 4; this is " + text_of_size(T.rows(), T.columns()) + ".");
  }
  if (num_rows == 4 && (T(3, 0) != 0.0 || T(3, 1) != 0.0 || T(3, 2) != 0.0 || T(3, 3) != 1.0)) {
    std::string last;
    for (std::size_t c = 0; c < 4; ++c) last += " " + text_of(T(3, c));
    const bool is_turned = T(0, 3) == 0.0 && T(1, 3) == 0.0 && T(2, 3) == 0.0 && T(3, 3) == 1.0;
    refuse("lastRow", "The last row of the pose must be 0 0 0 1; this is" + last + "." +
                          (is_turned ? " It looks transposed: the translation belongs in the last column." : ""));
  }
  Parts parts;
  copy_rotation(T, parts);
  take_nearest_rotation(parts.Q, "the rotation of the pose");
  for (std::size_t i = 0; i < 3; ++i) parts.s[i] = T(i, 3);
  return parts;
}

Parts parts_of_vector(const mxArray* value, const std::string& form) {
  const std::size_t num_rotation = form == "rotation_vector" ? 3 : 4;
  const Host_numbers v(value, "the pose");
  v.checked_vector(num_rotation + 3);
  Parts parts;
  set_translation(v.data() + num_rotation, parts);
  if (form == "rotation_vector") {
    set_rotation_vector(v.data(), parts);
  } else if (form == "axis_angle") {
    set_axis_angle(v.data(), parts);
  } else {
    set_quaternion(v.data(), form == "quaternion_wxyz", parts);
  }
  return parts;
}

Parts parts_of_cell(const mxArray* value, const Pose_form& form) {
  const bool is_pair = mxIsCell(value) && num_elements(value) == 2;
  if (!is_pair || element(value, 0) == nullptr || element(value, 1) == nullptr) {
    refuse("pose", std::string("A pose of form '") + form.name + "' is " + form.looks + ".");
  }
  const std::string name = form.name;
  const mxArray* first = element(value, 0);
  Parts parts;
  const Host_numbers s(element(value, 1), "the second part of the pose");
  set_translation(s.checked_vector(3).data(), parts);
  if (name == "opencv") {
    set_rotation_vector(Host_numbers(first, "rvec").checked_vector(3).data(), parts);
  } else if (name == "colmap") {
    set_quaternion(Host_numbers(first, "qvec").checked_vector(4).data(), true, parts);
  } else {
    set_rotation(first, "the rotation", parts);
  }
  return parts;
}

Parts parts_of_struct(const mxArray* value, const std::string& form) {
  if (mxIsStruct(value) && num_elements(value) != 1) {
    refuse("pose", "The pose must be one struct; this is an array of " + text(num_elements(value)) + ".");
  }
  Parts parts;
  if (form == "pose") {
    if (!has_field(value, "rotation") || !has_field(value, "centre")) {
      refuse("pose", "A pose struct has the fields rotation and centre, as kelvane_pose returns it.");
    }
    copy_rotation(field(value, 0, "rotation"), "pose.rotation", parts);  // see read_raw_pose
    set_translation(Host_numbers(field(value, 0, "centre"), "pose.centre").checked_vector(3).data(), parts);
    return parts;
  }
  for (const char* name : {"R", "Translation"}) {
    if (has_field(value, name)) continue;
    refuse("property", std::string("Expected an object of class rigidtform3d or a struct like it; this ") +
                           mxGetClassName(value) + " has no " + name + ".");
  }
  set_rotation(field(value, 0, "R"), "R of the rigidtform3d", parts);
  set_translation(Host_numbers(field(value, 0, "Translation"), "its Translation").checked_vector(3).data(), parts);
  return parts;
}

Parts parts_of(const mxArray* value, const Pose_form& form) {
  const std::string name = form.name;
  if (name == "matrix4x4" || name == "matrix3x4") return parts_of_matrix(value, name == "matrix4x4" ? 4 : 3);
  if (name == "pose" || name == "rigidtform3d") return parts_of_struct(value, name);
  const bool is_cell = name == "rotation_centre" || name == "rotation_translation" || form.frame != nullptr;
  return is_cell ? parts_of_cell(value, form) : parts_of_vector(value, name);
}

}  // namespace

Given_pose read_pose(const mxArray* value, const std::string& form, const std::string& frame) {
  Given_pose given = read_raw_pose(value, form, frame);
  if (is_struct(*given.form)) given.pose = checked(given.pose);
  return given;
}

Given_pose read_raw_pose(const mxArray* value, const std::string& form_name, const std::string& frame_name) {
  const Pose_form& form = form_name.empty() ? guessed_form(value) : pose_form(form_name);
  Given_pose given{{}, &form, frame_of(form, frame_name)};
  const Parts parts = parts_of(value, form);
  const bool is_inverse = given.frame == Pose_frame::camera_from_world;
  const bool is_centre = !is_inverse || std::string("rotation_centre") == form.name;
  for (int i = 0; i < 3; ++i) {
    given.pose.centre[i] = is_centre ? parts.s[i] : 0.0;
    for (int j = 0; j < 3; ++j) {
      given.pose.rotation[i][j] = is_inverse ? parts.Q[j][i] : parts.Q[i][j];
      if (!is_centre) given.pose.centre[i] -= parts.Q[j][i] * parts.s[j];
    }
  }
  return given;
}

}  // namespace kelvane::mex_engine
