// SPDX-License-Identifier: BSD-3-Clause
// A pose as the host's array. Plain data only: the host's functions may throw or jump.
#include <cmath>
#include <cstring>

#include "mex_engine/pose_forms.h"

namespace kelvane::mex_engine {
namespace {

bool is(const Pose_form& form, const char* name) { return std::strcmp(form.name, name) == 0; }

mxArray* matrix(const double* values, std::size_t rows, std::size_t columns) {
  mxArray* array = mxCreateDoubleMatrix(static_cast<mwSize>(rows), static_cast<mwSize>(columns), mxREAL);
  std::memcpy(mxGetPr(array), values, rows * columns * sizeof(double));
  return array;
}

/// Both are the cell's from here on.
mxArray* pair(mxArray* first, mxArray* second) {
  mxArray* cell = mxCreateCellMatrix(1, 2);
  mxSetCell(cell, 0, first);
  mxSetCell(cell, 1, second);
  return cell;
}

/// A rotation's entries and s behind each other in a row.
mxArray* row(const double* entries, std::size_t size, const double* s) {
  double all[7];
  std::memcpy(all, entries, size * sizeof(double));
  std::memcpy(all + size, s, 3 * sizeof(double));
  return matrix(all, 1, size + 3);
}

/// The unit axis and the angle; about z where there is no turn.
void axis_and_angle(const double* r, double* a) {
  const double angle = std::sqrt(r[0] * r[0] + r[1] * r[1] + r[2] * r[2]);
  for (int i = 0; i < 3; ++i) a[i] = angle == 0.0 ? (i == 2 ? 1.0 : 0.0) : r[i] / angle;
  a[3] = angle;
}

mxArray* written_vector(const Pose& pose, const Pose_form& form, Pose_frame frame) {
  const Rotation_vector_pose vector = rotation_vector_of(pose, frame);
  const Quaternion_pose quaternion = quaternion_of(pose, frame);
  const double* q = quaternion.q.data();
  const double* s = quaternion.s.data();
  const double scalar_first[] = {q[3], q[0], q[1], q[2]};
  if (is(form, "rotation_vector")) return row(vector.r.data(), 3, s);
  if (is(form, "quaternion_xyzw")) return row(q, 4, s);
  if (is(form, "quaternion_wxyz")) return row(scalar_first, 4, s);
  if (is(form, "opencv")) return pair(matrix(vector.r.data(), 3, 1), matrix(s, 3, 1));
  if (is(form, "colmap")) return pair(matrix(scalar_first, 1, 4), matrix(s, 1, 3));
  double a[4];
  axis_and_angle(vector.r.data(), a);
  return row(a, 4, s);
}

mxArray* written_matrix(const Pose& pose, const Pose_form& form, Pose_frame frame) {
  const Matrix_pose Qs = matrix_of(pose, frame);
  double columns[16] = {};
  const std::size_t num_rows = is(form, "matrix4x4") ? 4 : 3;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 4; ++j) columns[j * num_rows + i] = Qs[i][j];
  }
  if (num_rows == 4) columns[15] = 1.0;
  if (is(form, "matrix4x4") || is(form, "matrix3x4")) return matrix(columns, num_rows, 4);
  return pair(matrix(columns, 3, 3), matrix(is(form, "rotation_centre") ? pose.centre : columns + 9, 3, 1));
}

}  // namespace

mxArray* written_struct(const Pose& pose, const char* form, const char* frame) {
  static const char* names[] = {"rotation", "centre", "form", "frame"};
  double columns[9];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) columns[3 * j + i] = pose.rotation[i][j];
  }
  mxArray* result = mxCreateStructMatrix(1, 1, 4, names);
  mxSetFieldByNumber(result, 0, 0, matrix(columns, 3, 3));
  mxSetFieldByNumber(result, 0, 1, matrix(pose.centre, 3, 1));
  mxSetFieldByNumber(result, 0, 2, mxCreateString(form));
  mxSetFieldByNumber(result, 0, 3, mxCreateString(frame));
  return result;
}

mxArray* written_pose(const Pose& pose, const Pose_form& form, Pose_frame frame) {
  if (is_struct(form)) return written_struct(pose, form.name, name_of(frame));
  const bool is_matrix = is(form, "matrix4x4") || is(form, "matrix3x4") || is(form, "rotation_centre") ||
                         is(form, "rotation_translation") || is(form, "rigidtform3d");
  return is_matrix ? written_matrix(pose, form, frame) : written_vector(pose, form, frame);
}

}  // namespace kelvane::mex_engine
