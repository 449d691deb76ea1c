// SPDX-License-Identifier: BSD-3-Clause
// The table of the ten rotation types.
#include "camera_pose/rotation_type.h"

#include "rotations/chart.h"
#include "rotations/conversion_jacobians.h"
#include "rotations/conversions.h"

namespace kelvane {
namespace {

/// d(another representation) / d(the first one).
template <std::size_t num_rows, std::size_t num_columns>
struct Conversion_jacobian {
  double F[num_rows][num_columns];
  double& operator()(int i, int j) { return F[i][j]; }
};

template <void (*make)(const double*, Rotation_model&)>
void one_block(const double* r, Chart* blocks) {
  make(r, blocks[0].model);
}

void qu_aau_aan_blocks(const double* q, Chart* blocks) {
  double R[3][3];
  rotations::quaternion_to_rot_mat(q, R);
  double a[4];
  rotations::rot_mat_to_ang_axis_rad(R, a);
  double r[3];
  rotations::ang_axis_to_rot_vec(a, 3, r);
  Conversion_jacobian<3, 4> daau_dq;
  rotations::quaternion_to_rot_vec_jacobian(q, daau_dq);
  Conversion_jacobian<4, 4> daan_dq;
  rotations::quaternion_to_angle_axis_jacobian(q, daan_dq);
  quaternion_model(q, blocks[0].model);
  rotation_vector_model(r, blocks[1].model);
  carry_over(daau_dq.F, blocks[1].model);
  angle_axis_model(a, blocks[2].model);
  carry_over(daan_dq.F, blocks[2].model);
}

void aau_qu_aan_blocks(const double* r, Chart* blocks) {
  double R[3][3];
  rotations::rot_vec_rad_to_rot_mat(r, R);
  double q[4];
  rotations::rot_mat_to_quaternion(R, q);
  double a[4];
  a[3] = rotations::split_length(r, 3, a);
  Conversion_jacobian<4, 3> dqu_dr;
  rotations::rot_vec_to_quaternion_jacobian(r, dqu_dr);
  Conversion_jacobian<4, 3> daan_dr;
  rotations::rot_vec_to_angle_axis_jacobian(r, daan_dr);
  rotation_vector_model(r, blocks[0].model);
  quaternion_model(q, blocks[1].model);
  carry_over(dqu_dr.F, blocks[1].model);
  angle_axis_model(a, blocks[2].model);
  carry_over(daan_dr.F, blocks[2].model);
}

void aan_qu_aau_blocks(const double* a, Chart* blocks) {
  double R[3][3];
  rotations::ang_axis_rad_to_rot_mat(a, R);
  double q[4];
  rotations::rot_mat_to_quaternion(R, q);
  double r[3];
  rotations::ang_axis_to_rot_vec(a, 3, r);
  Conversion_jacobian<4, 4> dqu_da;
  rotations::angle_axis_to_quaternion_jacobian(a, dqu_da);
  Conversion_jacobian<3, 4> daau_da;
  rotations::angle_axis_to_rot_vec_jacobian(a, daau_da);
  angle_axis_model(a, blocks[0].model);
  quaternion_model(q, blocks[1].model);
  carry_over(dqu_da.F, blocks[1].model);
  rotation_vector_model(r, blocks[2].model);
  carry_over(daau_da.F, blocks[2].model);
}

constexpr Rotation_type rotation_types[] = {
    {0, "aau", Representation::rotation_vector, 2, 1, one_block<rotation_vector_model>},
    {1, "aan", Representation::angle_axis, 2, 1, one_block<angle_axis_model>},
    {2, "qu", Representation::quaternion, 2, 1, one_block<quaternion_model>},
    {3, "qn", Representation::quaternion, 2, 1, one_block<unit_quaternion_model>},
    {10, "aau-bv", Representation::rotation_vector, 3, 1, one_block<rotation_vector_model>},
    {11, "aan-bv", Representation::angle_axis, 3, 1, one_block<angle_axis_model>},
    {12, "qu-bv", Representation::quaternion, 3, 1, one_block<quaternion_model>},
    {-1, "qu,aau,aan", Representation::quaternion, 2, 3, qu_aau_aan_blocks},
    {-2, "aau,qu,aan", Representation::rotation_vector, 2, 3, aau_qu_aan_blocks},
    {-3, "aan,qu,aau", Representation::angle_axis, 2, 3, aan_qu_aau_blocks},
};

}  // namespace

const Rotation_type* find_rotation_type(int id) {
  for (const Rotation_type& type : rotation_types) {
    if (type.id == id) return &type;
  }
  return nullptr;
}

void predicted_rotation(Representation representation, const double* r, double (&R)[3][3]) {
  switch (representation) {
    case Representation::rotation_vector:
      return rotations::rot_vec_rad_to_rot_mat(r, R);
    case Representation::angle_axis:
      return rotations::ang_axis_rad_to_rot_mat(r, R);
    case Representation::quaternion:
      break;
  }
  rotations::quaternion_to_rot_mat(r, R);
}

}  // namespace kelvane
