// SPDX-License-Identifier: BSD-3-Clause
// From a model's parameters to the numbers of its mapping, and to other models.
#include <algorithm>
#include <cmath>

#include "cameras/bad_argument.h"
#include "cameras/fold.h"
#include "cameras/lens.h"

namespace kelvane {
namespace {

using P = Lens_parameter;

constexpr double pi = 3.14159265358979323846;
constexpr double least_omega = 1e-100;  // below it is a pinhole, and denormal angles lose its digits
constexpr double in_plane = 1e13;       // from there on only the rounding of a point decides what is seen

/// Of the sensor, by OpenCV's two angles: a turn about x and one about y, and the way back along the axis.
void set_tilt(double tau_x, double tau_y, double (&tilt)[3][3]) {
  const double c_x = std::cos(tau_x);
  const double s_x = std::sin(tau_x);
  const double c_y = std::cos(tau_y);
  const double s_y = std::sin(tau_y);
  // clang-format off
  const double R[3][3] = {{c_y, s_y * s_x, -s_y * c_x},
                          {0.0, c_x,       s_x},
                          {s_y, -c_y * s_x, c_y * c_x}};
  // clang-format on
  for (int j = 0; j < 3; ++j) {
    tilt[0][j] = R[2][2] * R[0][j] - R[0][2] * R[2][j];
    tilt[1][j] = R[2][2] * R[1][j] - R[1][2] * R[2][j];
    tilt[2][j] = R[2][j];
  }
}

void set_sensor(Lens& lens) {
  const bool has_one_length = lens.parameter(P::f) != 0.0;
  const double f_x = has_one_length ? lens.parameter(P::f) : lens.parameter(P::fx);
  const double f_y = has_one_length ? f_x : lens.parameter(P::fy);
  const double K[3][3] = {
      {f_x, lens.parameter(P::skew), lens.parameter(P::cx)}, {0.0, f_y, lens.parameter(P::cy)}, {0.0, 0.0, 1.0}};
  const double tau_x = lens.parameter(P::tau_x);
  const double tau_y = lens.parameter(P::tau_y);
  double tilt[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  lens.is_tilted = tau_x != 0.0 || tau_y != 0.0;
  if (lens.is_tilted) set_tilt(tau_x, tau_y, tilt);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      lens.K[i][j] = K[i][j];
      lens.to_pixel[i][j] = K[i][0] * tilt[0][j] + K[i][1] * tilt[1][j] + K[i][2] * tilt[2][j];
    }
  }
}

void set_distortion(Lens& lens) {
  const P numerator[] = {P::k1, P::k2, P::k3, P::k4_of_fisheye};
  const P denominator[] = {P::k4, P::k5, P::k6};
  const P prism[] = {P::s1, P::s2, P::s3, P::s4};
  for (int i = 0; i < 4; ++i) lens.numerator[i] = lens.parameter(numerator[i]);
  for (int i = 0; i < 3; ++i) lens.denominator[i] = lens.parameter(denominator[i]);
  for (int i = 0; i < 4; ++i) lens.prism[i] = lens.parameter(prism[i]);
  lens.tangential[0] = lens.parameter(P::p1);
  lens.tangential[1] = lens.parameter(P::p2);
  const auto is_zero = [](double x) { return x == 0.0; };
  lens.is_radial =
      std::all_of(lens.prism, lens.prism + 4, is_zero) && lens.tangential[0] == 0.0 && lens.tangential[1] == 0.0;
  lens.is_bent = !lens.is_radial || !std::all_of(lens.numerator, lens.numerator + 4, is_zero) ||
                 !std::all_of(lens.denominator, lens.denominator + 3, is_zero);
}

/// The place on the plane at an angle of pi, or too far for a depth to be more than rounding.
void set_plane(Lens& lens) {
  const double omega = lens.parameter(P::omega);
  const bool is_view = lens.model->plane == Lens_plane::field_of_view && omega > least_omega;
  lens.is_angular = is_view || lens.model->plane == Lens_plane::fisheye;
  lens.omega = is_view ? omega : 1.0;
  lens.stretch = is_view ? 2.0 * std::sin(0.5 * omega) / std::cos(0.5 * omega) : 1.0;
  lens.fold = lens.is_angular ? pi / lens.omega : in_plane;
}

void check_parameters(const Lens_model& model, const std::vector<double>& given) {
  const std::size_t n = model.num_parameters();
  const std::string name = model.name;
  if (given.size() != n) {
    throw Bad_argument("parameters", "",
                       name + " has " + std::to_string(n) + " parameters: " + parameters_in_words(model) +
                           "; here are " + std::to_string(given.size()) + ".");
  }
  for (std::size_t i = 0; i < n; ++i) {
    if (!std::isfinite(given[i])) {
      throw Bad_argument("notFinite", "",
                         "Parameter " + std::to_string(i + 1) + " of " + name + ", which has " +
                             parameters_in_words(model) + ", is " + text_of(given[i]) +
                             ". All of it must be finite numbers.");
    }
  }
}

}  // namespace

double Lens::parameter(Lens_parameter which) const {
  for (std::size_t i = 0; i < max_lens_parameters && model->parameters[i] != P::none; ++i) {
    if (model->parameters[i] == which) return given[i];
  }
  return 0.0;
}

Lens make_lens(const Lens_model& model, const std::vector<double>& parameters) {
  check_parameters(model, parameters);
  Lens lens{};
  lens.model = &model;
  std::copy(parameters.begin(), parameters.end(), lens.given);
  lens.forward = model.looks_back ? -1.0 : 1.0;
  set_sensor(lens);
  if (lens.K[0][0] == 0.0 || lens.K[1][1] == 0.0) {
    throw Bad_argument("intrinsics", "", "A focal length of 0 sees everything in one place.");
  }
  const double omega = lens.parameter(P::omega);
  if (omega < 0.0 || omega >= pi) {
    throw Bad_argument("parameters", "", "omega of FOV is " + text_of(omega) + "; it must be from 0 to below pi.");
  }
  set_distortion(lens);
  set_plane(lens);
  if (lens.is_bent || lens.is_tilted) lens.fold = fold_radius(lens, lens.fold);
  return lens;
}

}  // namespace kelvane
