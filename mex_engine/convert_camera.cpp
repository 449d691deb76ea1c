// SPDX-License-Identifier: BSD-3-Clause
// [camera, warning] = kelvane_engine('camera', model, parameters, '', image_size), or of intrinsics, coefficients and
// 'perspective' or 'fisheye'; [model, parameters] or [K, coefficients, kind] = kelvane_engine('camera_as', camera,
// form)
#include <algorithm>

#include "mex_engine/answer.h"
#include "mex_engine/host_camera.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/read_camera.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

std::vector<double> numbers_in(const mxArray* array, const char* name) {
  return array != nullptr ? read_vector(array, name) : std::vector<double>();
}

/// Of the ways to call kelvane_camera.
Lens given_lens(const Inputs& inputs) {
  const std::string kind = text_in(inputs[2], "The kind of a camera");
  if (!kind.empty() && kind != "perspective" && kind != "fisheye") {
    refuse("inputs", "A camera is 'perspective' or 'fisheye', but not " + quoted(kind) + ".");
  }
  if (mxIsChar(inputs[0])) {
    if (!kind.empty()) refuse("inputs", "A model says itself whether it is a fisheye; '" + kind + "' goes with K.");
    const Lens_model& model = lens_model(text_in(inputs[0], "The model of a camera"));
    return make_lens(model, numbers_in(inputs[1], "parameters"));
  }
  const Lens plain = read_lens_of_pixels(inputs[0]);
  const std::vector<double> coefficients = numbers_in(inputs[1], "coefficients");
  if (coefficients.empty() && kind != "fisheye") return plain;
  if (!is_pinhole(plain))
    refuse("distortion", "These intrinsics have a lens already; coefficients go with a pinhole's.");
  return lens_of_opencv(plain.K, coefficients, kind == "fisheye");
}

class Camera_answer final : public Answer {
 public:
  explicit Camera_answer(const Inputs& inputs) : camera_{given_lens(inputs)} {
    const std::vector<double> size = numbers_in(inputs[3], "ImageSize");
    if (!(camera_.lens.fold > 0.0)) warning_ = fold_sentence("This lens", camera_.lens);
    if (size.empty()) return;
    const auto is_positive = [](double x) { return x > 0.0; };
    if (size.size() != 2 || !std::all_of(size.begin(), size.end(), is_positive)) {
      refuse("imageSize", "ImageSize must be [width height], in pixels, both above 0.");
    }
    std::copy(size.begin(), size.end(), camera_.image_size);
    if (folds_inside(camera_.lens, size[0], size[1])) warning_ = fold_sentence("This lens", camera_.lens);
  }

  void write(int num_outputs, mxArray* outputs[]) const override {
    outputs[0] = created_cameras(&camera_, 1);
    if (num_outputs > 1) outputs[1] = mxCreateString(warning_.c_str());
  }

 private:
  Pictured_camera camera_;
  std::string warning_;
};

class Colmap_answer final : public Answer {
 public:
  explicit Colmap_answer(const Lens& lens) : lens_(lens_of_colmap(lens)) {}

  void write(int num_outputs, mxArray* outputs[]) const override {
    outputs[0] = mxCreateString(lens_.model->name);
    if (num_outputs > 1) outputs[1] = created_row(lens_.given, lens_.model->num_parameters());
    if (num_outputs > 2) outputs[2] = created_row(nullptr, 0);
  }

 private:
  Lens lens_;
};

class Opencv_answer final : public Answer {
 public:
  explicit Opencv_answer(const Lens& lens) : lens_(lens), coefficients_(opencv_coefficients(lens)) {}

  void write(int num_outputs, mxArray* outputs[]) const override {
    const bool is_fisheye = lens_.model->plane == Lens_plane::fisheye;
    outputs[0] = created_matrix(3, 3);
    for (int i = 0; i < 9; ++i) mxGetPr(outputs[0])[i] = lens_.K[i % 3][i / 3];
    if (num_outputs > 1) outputs[1] = created_row(coefficients_.data(), coefficients_.size());
    if (num_outputs > 2) outputs[2] = mxCreateString(is_fisheye ? "fisheye" : "perspective");
  }

 private:
  Lens lens_;
  std::vector<double> coefficients_;
};

}  // namespace

std::unique_ptr<Answer> describe_camera(const Inputs& inputs) { return std::make_unique<Camera_answer>(inputs); }

std::unique_ptr<Answer> convert_camera(const Inputs& inputs) {
  const std::string form = text_in(inputs[1], "The form");
  const Lens lens = read_lens_of_pixels(inputs[0]);
  if (form == "colmap") return std::make_unique<Colmap_answer>(lens);
  if (form == "opencv") return std::make_unique<Opencv_answer>(lens);
  refuse("inputs", "A camera can be told as 'colmap' or 'opencv', but not as " + quoted(form) + ".");
}

}  // namespace kelvane::mex_engine
