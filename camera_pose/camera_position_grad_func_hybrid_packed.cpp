// SPDX-License-Identifier: BSD-3-Clause
// The blocks of the hybrid Jacobians in packed order: the chain rule before the points.
#include <algorithm>

#include "camera_pose/camera_position_grad_func_hybrid.h"
#include "camera_pose/hybrid_blocks.h"
#include "camera_pose/jacobian_rows.h"
#include "fw_tools/rotation_arrays.h"
#include "fw_tools/rotation_jacobian_elements.h"

namespace {

namespace arrays = fw::rotation_arrays;
namespace elements = fw::rotation_jacobian_elements;

/// d(another representation) / d(the first one).
template <std::size_t num_rows, std::size_t num_columns>
struct Conversion_jacobian {
  double F[num_rows][num_columns];
  double& operator()(int i, int j) { return F[i][j]; }
};

/// The search vector of another representation: its rotation, then the translation.
template <std::size_t n_r>
struct Search_vector {
  double x[n_r + 3];
  explicit Search_vector(const double* t) { std::copy_n(t, 3, x + n_r); }
};

}  // namespace

template <std::size_t n_r>
void Camera_position_grad_func_hybrid::write_blocks(const Projection<n_r>& block_1, const Projection<n_r>& block_2,
                                                    const Projection<n_r>& block_3, fw::Row_sink& sink) const {
  const std::size_t rows_per_block = layout().packed_size() / 3;
  write_jacobian_rows(*points, block_1, false, 0, sink);
  write_jacobian_rows(*points, block_2, false, rows_per_block, sink);
  write_jacobian_rows(*points, block_3, false, 2 * rows_per_block, sink);
}

void Camera_position_grad_func_qu_aau_aan::linearise(const std::vector<double>& x, fw::Row_sink& sink) const try {
  const double* q = x.data();
  Conversion_jacobian<3, 4> daau_dq;
  elements::quaternion_to_rot_vec_jacobian(q, daau_dq);
  Conversion_jacobian<4, 4> daan_dq;
  elements::quaternion_to_angle_axis_jacobian(q, daan_dq);
  double R[3][3];
  arrays::quaternion_to_rot_mat(q, R);
  Search_vector<4> a(q + 4);
  arrays::rot_mat_to_ang_axis_rad(R, a.x);
  Search_vector<3> r(q + 4);
  arrays::ang_axis_to_rot_vec(a.x, 3, r.x);
  write_blocks(qu.projection_at(q), carry_over(aau.projection_at(r.x), daau_dq.F),
               carry_over(aan.projection_at(a.x), daan_dq.F), sink);
}
FW_ADD_CONTEXT(site::qu_aau_aan, "")

void Camera_position_grad_func_aau_qu_aan::linearise(const std::vector<double>& x, fw::Row_sink& sink) const try {
  const double* r = x.data();
  Conversion_jacobian<4, 3> dqu_dr;
  elements::rot_vec_to_quaternion_jacobian(r, dqu_dr);
  Conversion_jacobian<4, 3> daan_dr;
  elements::rot_vec_to_angle_axis_jacobian(r, daan_dr);
  double R[3][3];
  arrays::rot_vec_rad_to_rot_mat(r, R);
  Search_vector<4> q(r + 3);
  arrays::rot_mat_to_quaternion(R, q.x);
  Search_vector<4> a(r + 3);
  a.x[3] = arrays::split_length(r, 3, a.x);
  write_blocks(aau.projection_at(r), carry_over(qu.projection_at(q.x), dqu_dr.F),
               carry_over(aan.projection_at(a.x), daan_dr.F), sink);
}
FW_ADD_CONTEXT(site::aau_qu_aan, "")

void Camera_position_grad_func_aan_qu_aau::linearise(const std::vector<double>& x, fw::Row_sink& sink) const try {
  const double* a = x.data();
  Conversion_jacobian<4, 4> dqu_da;
  elements::angle_axis_to_quaternion_jacobian(a, dqu_da);
  Conversion_jacobian<3, 4> daau_da;
  elements::angle_axis_to_rot_vec_jacobian(a, daau_da);
  double R[3][3];
  arrays::ang_axis_rad_to_rot_mat(a, R);
  Search_vector<4> q(a + 4);
  arrays::rot_mat_to_quaternion(R, q.x);
  Search_vector<3> r(a + 4);
  arrays::ang_axis_to_rot_vec(a, 3, r.x);
  write_blocks(aan.projection_at(a), carry_over(qu.projection_at(q.x), dqu_da.F),
               carry_over(aau.projection_at(r.x), daau_da.F), sink);
}
FW_ADD_CONTEXT(site::aan_qu_aau, "")
