// SPDX-License-Identifier: BSD-3-Clause
// The numbers of a camera.
#include "mex_engine/read_camera.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

/// K with its place in the sentences of a host.
Camera_model camera_of_matrix(const Host_numbers& given) {
  double K[3][3];
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) K[i][j] = given(i, j);
  }
  return pixel_camera(K);
}

Camera_model camera_of_numbers(const mxArray* intrinsics) {
  const Host_numbers given(intrinsics, "intrinsics");
  const double* x = given.checked_finite().data();
  if (given.size() == 0) return {};
  if (given.is_vector() && given.size() == 3) return {false, x[0], 0.0, x[1], x[0], x[2]};
  if (given.is_vector() && given.size() == 4) return {false, x[0], 0.0, x[2], x[1], x[3]};
  if (given.rows() == 3 && given.columns() == 3) return camera_of_matrix(given);
  refuse("intrinsics", "intrinsics must be [f cx cy], [fx fy cx cy], 3 x 3 or a cameraIntrinsics; this is " +
                           text_of_size(given.rows(), given.columns()) + ".");
}

/// By its properties, so that MATLAB's object and a struct with the same fields are as good.
const mxArray* property(const mxArray* object, const char* name) {
  if (has_field(object, name)) return field(object, 0, name);
  refuse("property", std::string("Expected an object of class cameraIntrinsics or a struct like it; this ") +
                         mxGetClassName(object) + " has no " + name + ".");
}

bool has_any(const mxArray* object, const char* name) {
  const Host_numbers values(property(object, name), name);
  return std::any_of(values.data(), values.data() + values.size(), [](double x) { return x != 0.0; });
}

Camera_model camera_of_object(const mxArray* object) {
  const Host_numbers f(property(object, "FocalLength"), "FocalLength");
  const Host_numbers c(property(object, "PrincipalPoint"), "PrincipalPoint");
  const Host_numbers skew(property(object, "Skew"), "Skew");
  f.checked_vector(2);
  c.checked_vector(2);
  skew.checked_vector(1);
  const bool is_radial = has_any(object, "RadialDistortion");
  const bool is_tangential = has_any(object, "TangentialDistortion");
  if (is_radial || is_tangential) {
    refuse(
        "distortion",
        "These intrinsics have lens distortion. Remove it from the observations (undistortPoints), then hand over the "
        "intrinsics without it.");
  }
  return {false, f.data()[0], skew.data()[0], c.data()[0], f.data()[1], c.data()[1]};
}

}  // namespace

Camera_model read_camera(const mxArray* intrinsics) {
  const bool is_numeric = mxIsNumeric(intrinsics) || mxIsLogical(intrinsics);
  const Camera_model camera = is_numeric ? camera_of_numbers(intrinsics) : camera_of_object(intrinsics);
  if (!std::isfinite(camera.fx + camera.fy + camera.skew + camera.cx + camera.cy)) {
    refuse("notFinite", "intrinsics are not finite once K is divided by its last entry.");
  }
  check(camera);
  return camera;
}

}  // namespace kelvane::mex_engine
