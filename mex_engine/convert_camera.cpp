// SPDX-License-Identifier: BSD-3-Clause
// [camera, fold] = kelvane_engine('camera', model, parameters, '', image_size), or of intrinsics, coefficients and
// 'perspective' or 'fisheye'; [model, parameters] or [K, coefficients, kind] = kelvane_engine('camera_as', camera,
// form)
#include <algorithm>

#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/read_camera.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

mxArray* row(const double* values, std::size_t size) {
  mxArray* array = mxCreateDoubleMatrix(size > 0 ? 1 : 0, static_cast<mwSize>(size), mxREAL);
  std::copy_n(values, size, mxGetPr(array));
  return array;
}

std::vector<double> numbers_in(const mxArray* array, const char* name) {
  return array != nullptr ? read_vector(array, name) : std::vector<double>();
}

/// Of the ways to call kelvane_camera.
Lens given_lens(const Inputs& inputs) {
  if (mxIsChar(inputs[0])) {
    const Lens_model& model = lens_model(text_in(inputs[0], "The model of a camera"));
    return make_lens(model, numbers_in(inputs[1], "parameters"));
  }
  const Lens plain = read_lens_of_pixels(inputs[0]);
  const std::vector<double> coefficients = numbers_in(inputs[1], "coefficients");
  const std::string kind = text_in(inputs[2], "The kind of a camera");
  if (!kind.empty() && kind != "perspective" && kind != "fisheye") {
    refuse("inputs", "A camera is 'perspective' or 'fisheye', but not " + quoted(kind) + ".");
  }
  if (coefficients.empty() && kind != "fisheye") return plain;
  if (!is_pinhole(plain))
    refuse("distortion", "These intrinsics have a lens already; coefficients go with a pinhole's.");
  return lens_of_opencv(plain.K, coefficients, kind == "fisheye");
}

class Camera_answer final : public Answer {
 public:
  explicit Camera_answer(const Inputs& inputs)
      : lens_(given_lens(inputs)), image_size_(numbers_in(inputs[3], "ImageSize")) {
    if (image_size_.empty()) return;
    const auto is_positive = [](double x) { return x > 0.0; };
    if (image_size_.size() != 2 || !std::all_of(image_size_.begin(), image_size_.end(), is_positive)) {
      refuse("imageSize", "ImageSize must be [width height], in pixels, both above 0.");
    }
    for (const double u : {0.0, image_size_[0]}) {
      for (const double v : {0.0, image_size_[1]}) {
        const double corner[2] = {u, v};
        double direction[3];
        has_fold_ |= !unproject(lens_, corner, direction);
      }
    }
  }

  void write(int num_outputs, mxArray* outputs[]) const override {
    static const char* names[] = {"model", "parameters", "image_size", "fold"};
    const double angle = largest_angle(lens_);
    const double fold = fold_in_pixels(lens_);
    outputs[0] = mxCreateStructMatrix(1, 1, 4, names);
    mxSetFieldByNumber(outputs[0], 0, 0, mxCreateString(lens_.model->name));
    mxSetFieldByNumber(outputs[0], 0, 1, row(lens_.given, lens_.model->num_parameters()));
    mxSetFieldByNumber(outputs[0], 0, 2, row(image_size_.data(), image_size_.size()));
    mxSetFieldByNumber(outputs[0], 0, 3, row(&angle, 1));
    if (num_outputs > 1) outputs[1] = row(&fold, has_fold_ ? 1 : 0);
  }

 private:
  Lens lens_;
  std::vector<double> image_size_;
  bool has_fold_ = false;
};

class Colmap_answer final : public Answer {
 public:
  explicit Colmap_answer(const Lens& lens) : lens_(lens_of_colmap(lens)) {}

  void write(int num_outputs, mxArray* outputs[]) const override {
    outputs[0] = mxCreateString(lens_.model->name);
    if (num_outputs > 1) outputs[1] = row(lens_.given, lens_.model->num_parameters());
    if (num_outputs > 2) outputs[2] = row(nullptr, 0);
  }

 private:
  Lens lens_;
};

class Opencv_answer final : public Answer {
 public:
  explicit Opencv_answer(const Lens& lens) : lens_(lens), coefficients_(opencv_coefficients(lens)) {}

  void write(int num_outputs, mxArray* outputs[]) const override {
    const bool is_fisheye = lens_.model->plane == Lens_plane::fisheye;
    outputs[0] = mxCreateDoubleMatrix(3, 3, mxREAL);
    for (int i = 0; i < 9; ++i) mxGetPr(outputs[0])[i] = lens_.K[i % 3][i / 3];
    if (num_outputs > 1) outputs[1] = row(coefficients_.data(), coefficients_.size());
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
