// SPDX-License-Identifier: BSD-3-Clause
// The same camera in the words of OpenCV and COLMAP.
#include <algorithm>
#include <iterator>

#include "cameras/bad_argument.h"
#include "cameras/lens.h"

namespace kelvane {
namespace {

using P = Lens_parameter;

constexpr P of_opencv[] = {P::k1, P::k2, P::p1, P::p2, P::k3, P::k4,    P::k5,
                           P::k6, P::s1, P::s2, P::s3, P::s4, P::tau_x, P::tau_y};
constexpr P of_opencv_fisheye[] = {P::k1, P::k2, P::k3, P::k4_of_fisheye};

/// A model with these parameters and 0 in all else.
Lens lens_with(const char* name, const double (&K)[3][3], const P* coefficients, const std::vector<double>& values) {
  const Lens_model& model = lens_model(name);
  std::vector<double> parameters;
  for (std::size_t i = 0; i < model.num_parameters(); ++i) {
    const P which = model.parameters[i];
    const auto* found = std::find(coefficients, coefficients + values.size(), which);
    parameters.push_back(which == P::f || which == P::fx ? K[0][0]
                         : which == P::fy                ? K[1][1]
                         : which == P::cx                ? K[0][2]
                         : which == P::cy                ? K[1][2]
                         : which == P::skew              ? K[0][1]
                         : found != coefficients + values.size()
                             ? values[static_cast<std::size_t>(found - coefficients)]
                             : 0.0);
  }
  return make_lens(model, parameters);
}

/// Whether a model has a place for everything of a lens that is not 0.
bool can_hold(const Lens_model& model, const Lens& lens) {
  const auto has = [&](P which) {
    return std::find(std::begin(model.parameters), std::end(model.parameters), which) != std::end(model.parameters);
  };
  for (std::size_t i = 0; i < lens.model->num_parameters(); ++i) {
    const P which = lens.model->parameters[i];
    const bool is_length = which == P::f || which == P::fx || which == P::fy;
    if (!is_length && lens.given[i] != 0.0 && !has(which)) return false;
  }
  return model.plane == lens.model->plane && model.looks_back == lens.model->looks_back;
}

}  // namespace

Lens lens_of_opencv(const double (&K)[3][3], const std::vector<double>& coefficients, bool is_fisheye) {
  const std::size_t n = coefficients.size();
  if (is_fisheye) {
    if (n != 4) {
      throw Bad_argument("distortion", "",
                         "A fisheye has 4 coefficients, k1 to k4; here are " + std::to_string(n) + ".");
    }
    return lens_with(K[0][1] == 0.0 ? "OPENCV_FISHEYE" : "GENERAL_FISHEYE", K, of_opencv_fisheye, coefficients);
  }
  if (n != 0 && n != 4 && n != 5 && n != 8 && n != 12 && n != 14) {
    throw Bad_argument("distortion", "",
                       "OpenCV has 4, 5, 8, 12 or 14 distortion coefficients, k1, k2, p1, p2, k3, k4, k5, "
                       "k6, s1, s2, s3, s4, tau_x, tau_y; here are " +
                           std::to_string(n) + ".");
  }
  const bool is_general = n > 8 || K[0][1] != 0.0;
  const char* name = is_general ? "GENERAL_PERSPECTIVE" : n > 4 ? "FULL_OPENCV" : n > 0 ? "OPENCV" : "PINHOLE";
  return lens_with(name, K, of_opencv, coefficients);
}

std::vector<double> opencv_coefficients(const Lens& lens) {
  const bool is_fisheye = lens.model->plane == Lens_plane::fisheye;
  const char* most = is_fisheye ? "GENERAL_FISHEYE" : "GENERAL_PERSPECTIVE";
  if (!can_hold(lens_model(most), lens)) {
    throw Bad_argument("noOpencvModel", "", std::string("OpenCV has no camera like this ") + lens.model->name + ".");
  }
  const P* order = is_fisheye ? of_opencv_fisheye : of_opencv;
  std::vector<double> values;
  for (std::size_t i = 0; i < (is_fisheye ? std::size(of_opencv_fisheye) : std::size(of_opencv)); ++i) {
    values.push_back(lens.parameter(order[i]));
  }
  if (is_fisheye) return values;
  for (const std::size_t n : {4U, 5U, 8U, 12U}) {
    if (std::all_of(values.begin() + static_cast<std::ptrdiff_t>(n), values.end(), [](double x) { return x == 0.0; })) {
      values.resize(n);
      break;
    }
  }
  return values;
}

Lens lens_of_colmap(const Lens& lens) {
  if (lens.model->is_of_colmap) return lens;
  for (const Lens_model& model : lens_models()) {
    const bool has_two_lengths = model.parameters[0] == P::fx;
    if (!model.is_of_colmap || !has_two_lengths || !can_hold(model, lens)) continue;
    std::vector<double> values;
    for (std::size_t i = 0; i < model.num_parameters(); ++i) values.push_back(lens.parameter(model.parameters[i]));
    return make_lens(model, values);
  }
  throw Bad_argument("noColmapModel", "", std::string("COLMAP has no camera like this ") + lens.model->name + ".");
}

bool is_pinhole(const Lens& lens) { return !lens.is_angular && !lens.is_bent && !lens.is_tilted && lens.forward > 0.0; }

}  // namespace kelvane
