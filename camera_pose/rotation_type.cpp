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

using Model = void(const double*, Rotation_model&);

template <Model make>
void one_block(const double* r, Chart* blocks) {
  make(r, blocks[0].model);
}

/// The model at `own`, which are x in another representation, differentiated by x.
template <std::size_t num_rows, std::size_t num_columns>
void other_block(Model make, const double* own,
                 void (*jacobian)(const double*, Conversion_jacobian<num_rows, num_columns>&), const double* x,
                 Chart& block) {
  Conversion_jacobian<num_rows, num_columns> own_by_x;
  jacobian(x, own_by_x);
  make(own, block.model);
  carry_over(own_by_x.F, block.model);
}

void qu_aau_aan_blocks(const double* q, Chart* blocks) {
  double R[3][3], a[4], r[3];
  rotations::quaternion_to_rot_mat(q, R);
  rotations::rot_mat_to_ang_axis_rad(R, a);
  rotations::ang_axis_to_rot_vec(a, 3, r);
  quaternion_model(q, blocks[0].model);
  other_block<3, 4>(rotation_vector_model, r, rotations::quaternion_to_rot_vec_jacobian, q, blocks[1]);
  other_block<4, 4>(angle_axis_model, a, rotations::quaternion_to_angle_axis_jacobian, q, blocks[2]);
}

void aau_qu_aan_blocks(const double* r, Chart* blocks) {
  double R[3][3], q[4], a[4];
  rotations::rot_vec_rad_to_rot_mat(r, R);
  rotations::rot_mat_to_quaternion(R, q);
  a[3] = rotations::split_length(r, 3, a);
  rotation_vector_model(r, blocks[0].model);
  other_block<4, 3>(quaternion_model, q, rotations::rot_vec_to_quaternion_jacobian, r, blocks[1]);
  other_block<4, 3>(angle_axis_model, a, rotations::rot_vec_to_angle_axis_jacobian, r, blocks[2]);
}

void aan_qu_aau_blocks(const double* a, Chart* blocks) {
  double R[3][3], q[4], r[3];
  rotations::ang_axis_rad_to_rot_mat(a, R);
  rotations::rot_mat_to_quaternion(R, q);
  rotations::ang_axis_to_rot_vec(a, 3, r);
  angle_axis_model(a, blocks[0].model);
  other_block<4, 4>(quaternion_model, q, rotations::angle_axis_to_quaternion_jacobian, a, blocks[1]);
  other_block<3, 4>(rotation_vector_model, r, rotations::angle_axis_to_rot_vec_jacobian, a, blocks[2]);
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
