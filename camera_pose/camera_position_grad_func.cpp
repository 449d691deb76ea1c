// SPDX-License-Identifier: BSD-3-Clause
// One rotation model and one kernel for each Jacobian.
#include "camera_pose/camera_position_grad_func.h"

#include <utility>

#include "camera_pose/projection.h"

namespace {

Simple_intrinsics simple_intrinsics(const fw::matrix<double>& K) { return {K.get(0, 0), K.get(0, 2), K.get(1, 2)}; }

}  // namespace

Camera_position_grad_func::Camera_position_grad_func(std::vector<std::vector<double>> the_points,
                                                     fw::matrix<double> the_K, fw::Opt_func* the_base) noexcept
    : fw::Grad_func(the_base), points(std::move(the_points)), K(std::move(the_K)) {}

template <std::size_t n_r>
int Camera_position_grad_func::write_pixel_jacobian(const Rotation_model<n_r>& rotation, const double* t, cv::Mat& J,
                                                    int start) const {
  const Projection<n_r> projection = make_projection(simple_intrinsics(K), rotation, t);
  double* rows = J.ptr<double>() + start;
  for (const auto& X : points) {
    write_pixel_rows(projection, X.data(), rows);
    rows += 2 * (n_r + 3);
  }
  return 2 * static_cast<int>(points.size());
}

template <std::size_t n_r>
int Camera_position_grad_func::write_bearing_jacobian(const Rotation_model<n_r>& rotation, const double* t, cv::Mat& J,
                                                      int start) const {
  const Projection<n_r> projection = make_projection(simple_intrinsics(K), rotation, t);
  double* rows = J.ptr<double>() + start;
  for (const auto& X : points) {
    write_bearing_rows(projection, X.data(), t, rows);
    rows += 3 * (n_r + 3);
  }
  return 3 * static_cast<int>(points.size());
}

int Camera_position_grad_func_aau::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_pixel_jacobian(rotation_vector_model(x.data()), x.data() + 3, J, start);
}

int Camera_position_grad_func_aan::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_pixel_jacobian(angle_axis_model(x.data()), x.data() + 4, J, start);
}

int Camera_position_grad_func_qu::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_pixel_jacobian(quaternion_model(x.data()), x.data() + 4, J, start);
}

int Camera_position_grad_func_qn::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_pixel_jacobian(unit_quaternion_model(x.data()), x.data() + 4, J, start);
}

int Camera_position_grad_func_aau_bv::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_bearing_jacobian(rotation_vector_model(x.data()), x.data() + 3, J, start);
}

int Camera_position_grad_func_aan_bv::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_bearing_jacobian(angle_axis_model(x.data()), x.data() + 4, J, start);
}

int Camera_position_grad_func_qu_bv::operator()(const std::vector<double>& x, cv::Mat& J, int start) const {
  return write_bearing_jacobian(quaternion_model(x.data()), x.data() + 4, J, start);
}
