// SPDX-License-Identifier: BSD-3-Clause
// The table of models.
#include <algorithm>

#include "cameras/bad_argument.h"
#include "cameras/lens.h"

namespace kelvane {
namespace {

constexpr const char* parameter_names[] = {"",   "f",  "fx", "fy", "cx",    "cy",    "skew", "k1",
                                           "k2", "k3", "k4", "k5", "k6",    "k4",    "p1",   "p2",
                                           "s1", "s2", "s3", "s4", "tau_x", "tau_y", "omega"};

std::string in_upper_case(std::string text) {  // of the models' alphabet
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

/// Levenshtein's distance, row by row of its table.
std::size_t num_edits(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t above_left = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min({above + 1, row[j - 1] + 1, above_left + (a[i - 1] == b[j - 1] ? 0 : 1)});
      above_left = above;
    }
  }
  return row[b.size()];
}

/// With at most half of its letters to change; empty where there is none.
std::string hint(const std::string& given) {
  const Lens_model* nearest = nullptr;
  std::size_t least = 0;
  for (const Lens_model& model : lens_models()) {
    const std::size_t edits = num_edits(in_upper_case(given), model.name);
    if (nearest == nullptr || edits < least) {
      nearest = &model;
      least = edits;
    }
  }
  return 2 * least <= given.size() ? std::string(" Did you mean '") + nearest->name + "'?" : std::string();
}

}  // namespace

std::size_t Lens_model::num_parameters() const {
  return static_cast<std::size_t>(std::find(parameters, parameters + max_lens_parameters, Lens_parameter::none) -
                                  parameters);
}

const std::vector<Lens_model>& lens_models() {
  using P = Lens_parameter;
  constexpr Lens_plane perspective = Lens_plane::perspective;
  constexpr Lens_plane fisheye = Lens_plane::fisheye;
  // clang-format off
  static const std::vector<Lens_model> models = {
      {"SIMPLE_PINHOLE", perspective, true, false, {P::f, P::cx, P::cy}},
      {"PINHOLE", perspective, true, false, {P::fx, P::fy, P::cx, P::cy}},
      {"SIMPLE_RADIAL", perspective, true, false, {P::f, P::cx, P::cy, P::k1}},
      {"RADIAL", perspective, true, false, {P::f, P::cx, P::cy, P::k1, P::k2}},
      {"OPENCV", perspective, true, false, {P::fx, P::fy, P::cx, P::cy, P::k1, P::k2, P::p1, P::p2}},
      {"FULL_OPENCV", perspective, true, false,
       {P::fx, P::fy, P::cx, P::cy, P::k1, P::k2, P::p1, P::p2, P::k3, P::k4, P::k5, P::k6}},
      {"OPENCV_FISHEYE", fisheye, true, false,
       {P::fx, P::fy, P::cx, P::cy, P::k1, P::k2, P::k3, P::k4_of_fisheye}},
      {"SIMPLE_RADIAL_FISHEYE", fisheye, true, false, {P::f, P::cx, P::cy, P::k1}},
      {"RADIAL_FISHEYE", fisheye, true, false, {P::f, P::cx, P::cy, P::k1, P::k2}},
      {"FOV", Lens_plane::field_of_view, true, false, {P::fx, P::fy, P::cx, P::cy, P::omega}},
      {"THIN_PRISM_FISHEYE", fisheye, true, false,
       {P::fx, P::fy, P::cx, P::cy, P::k1, P::k2, P::p1, P::p2, P::k3, P::k4_of_fisheye, P::s1, P::s3}},
      {"BAL", perspective, false, true, {P::f, P::k1, P::k2}},
      {"GENERAL_PERSPECTIVE", perspective, false, false,
       {P::fx, P::fy, P::cx, P::cy, P::skew, P::k1, P::k2, P::p1, P::p2, P::k3, P::k4, P::k5, P::k6,
        P::s1, P::s2, P::s3, P::s4, P::tau_x, P::tau_y}},
      {"GENERAL_FISHEYE", fisheye, false, false,
       {P::fx, P::fy, P::cx, P::cy, P::skew, P::k1, P::k2, P::k3, P::k4_of_fisheye}},
  };
  // clang-format on
  return models;
}

const Lens_model& lens_model(std::string_view name) {
  std::string names;
  for (const Lens_model& model : lens_models()) {
    if (name == model.name) return model;
    names += (names.empty() ? "" : ", ") + std::string(model.name);
  }
  constexpr std::size_t longest = 60;
  std::string shown = std::string(name.substr(0, longest)) + (name.size() > longest ? "..." : "");
  std::replace(shown.begin(), shown.end(), '\0', '?');  // a host would take it for the end of the sentence
  throw Bad_argument("unknownModel", "",
                     "'" + shown + "' is not a camera model." + hint(shown) + " There are " + names + ".");
}

std::string parameters_in_words(const Lens_model& model) {
  std::string words;
  for (std::size_t i = 0; i < model.num_parameters(); ++i) {
    words += (i == 0 ? "" : ", ") + std::string(parameter_names[static_cast<int>(model.parameters[i])]);
  }
  return words;
}

}  // namespace kelvane
