// SPDX-License-Identifier: BSD-3-Clause
// From every form of intrinsics to a lens.
#include "mex_engine/read_camera.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

Lens pinhole(const char* model, const std::vector<double>& parameters) {
  return make_lens(lens_model(model), parameters);
}

Lens pinhole_of_matrix(const Host_numbers& given) {
  double K[3][3];
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      K[i][j] = given(i, j);
      if (given(2, 2) != 0.0 && !std::isfinite(given(i, j) / given(2, 2))) {
        refuse("notFinite", "intrinsics are not finite once K is divided by its last entry.");
      }
    }
  }
  const Camera_model camera = pixel_camera(K);
  const double upper[3][3] = {{camera.fx, camera.skew, camera.cx}, {0.0, camera.fy, camera.cy}, {0.0, 0.0, 1.0}};
  return lens_of_opencv(upper, {}, false);
}

std::optional<Lens> lens_of_numbers(const mxArray* intrinsics) {
  const Host_numbers given(intrinsics, "intrinsics");
  const double* x = given.checked_finite().data();
  if (given.size() == 0) return {};
  if (given.is_vector() && given.size() == 3) return pinhole("SIMPLE_PINHOLE", {x[0], x[1], x[2]});
  if (given.is_vector() && given.size() == 4) return pinhole("PINHOLE", {x[0], x[1], x[2], x[3]});
  if (given.rows() == 3 && given.columns() == 3) return pinhole_of_matrix(given);
  refuse("intrinsics",
         "intrinsics must be [f cx cy], [fx fy cx cy], 3 x 3, a struct of kelvane_camera or a "
         "cameraIntrinsics; this is " +
             text_of_size(given.rows(), given.columns()) + ".");
}

/// By its properties, so that MATLAB's object and a struct with the same fields are as good.
const mxArray* property(const mxArray* object, const char* name) {
  if (has_field(object, name)) return field(object, 0, name);
  refuse("property", std::string("Expected an object of class cameraIntrinsics or a struct like it; this ") +
                         mxGetClassName(object) + " has no " + name + ".");
}

/// k1, k2 and perhaps k3, then p1, p2, in OpenCV's order.
std::vector<double> coefficients_of_object(const mxArray* object) {
  const std::vector<double> radial = read_vector(property(object, "RadialDistortion"), "RadialDistortion");
  const std::vector<double> tangential = read_vector(property(object, "TangentialDistortion"), "TangentialDistortion");
  if ((!radial.empty() && radial.size() != 2 && radial.size() != 3) ||
      (!tangential.empty() && tangential.size() != 2)) {
    refuse("distortion", "RadialDistortion must have 2 or 3 elements and TangentialDistortion 2; these have " +
                             text(radial.size()) + " and " + text(tangential.size()) + ".");
  }
  std::vector<double> all(5);
  std::copy_n(radial.begin(), std::min<std::size_t>(2, radial.size()), all.begin());
  std::copy(tangential.begin(), tangential.end(), all.begin() + 2);
  if (radial.size() == 3) all[4] = radial[2];
  while (!all.empty() && all.back() == 0.0) all.pop_back();
  all.resize(all.empty() ? 0 : all.size() < 5 ? 4 : 5);
  return all;
}

/// Refuses what is no object, nor a struct like one.
void check_object(const mxArray* object) {
  if (mxIsCell(object) || mxIsChar(object)) {
    refuse("intrinsics",
           std::string("intrinsics must be numbers or one camera; this is of class ") + mxGetClassName(object) + ".");
  }
  if (mxIsStruct(object) && num_elements(object) != 1) {
    refuse("intrinsics", "intrinsics must be one camera; this is an array of " + text(num_elements(object)) + ".");
  }
  if (has_field(object, "model") || has_field(object, "parameters")) {
    const char* missing = has_field(object, "model") ? "parameters" : "model";
    refuse("property", std::string("A camera has model and parameters; this struct has no ") + missing + ".");
  }
}

Lens lens_of_object(const mxArray* object) {
  check_object(object);
  if (mxGetClassName(object) == std::string("fisheyeIntrinsics") || has_field(object, "MappingCoefficients")) {
    refuse("fisheyeIntrinsics",
           "A fisheyeIntrinsics maps by a polynomial of its own, which is not among the models. Take OPENCV_FISHEYE, "
           "which most calibrations offer.");
  }
  const Host_numbers f(property(object, "FocalLength"), "FocalLength");
  const Host_numbers c(property(object, "PrincipalPoint"), "PrincipalPoint");
  const Host_numbers skew(property(object, "Skew"), "Skew");
  f.checked_vector(2);
  c.checked_vector(2);
  skew.checked_vector(1);
  const double K[3][3] = {{f.data()[0], skew.data()[0], c.data()[0]}, {0.0, f.data()[1], c.data()[1]}, {0.0, 0.0, 1.0}};
  return lens_of_opencv(K, coefficients_of_object(object), false);
}

}  // namespace

std::vector<double> read_vector(const mxArray* array, const char* name) {
  const Host_numbers given(array, name);
  given.checked_finite();
  if (given.size() > 0 && !given.is_vector()) {
    refuse("size",
           std::string(name) + " must be a vector; this is " + text_of_size(given.rows(), given.columns()) + ".");
  }
  return {given.data(), given.data() + given.size()};
}

bool is_camera_struct(const mxArray* intrinsics) {
  return has_field(intrinsics, "model") && has_field(intrinsics, "parameters");
}

std::optional<Lens> read_lens(const mxArray* intrinsics) {
  if (mxIsNumeric(intrinsics) || mxIsLogical(intrinsics)) return lens_of_numbers(intrinsics);
  if (is_camera_struct(intrinsics)) {
    const Lens_model& model = lens_model(text_in(field(intrinsics, 0, "model"), "The model of a camera"));
    return make_lens(model, read_vector(field(intrinsics, 0, "parameters"), "parameters"));
  }
  return lens_of_object(intrinsics);
}

Lens read_lens_of_pixels(const mxArray* intrinsics) {
  const std::optional<Lens> lens = read_lens(intrinsics);
  if (!lens) refuse("intrinsics", "This needs a camera; [] stands for directions, which have no pixels.");
  return *lens;
}

Camera_model read_camera(const mxArray* intrinsics) {
  const std::optional<Lens> lens = read_lens(intrinsics);
  return lens ? lens_camera(*lens) : Camera_model{};
}

}  // namespace kelvane::mex_engine
