// SPDX-License-Identifier: BSD-3-Clause
// Field by field.
#include "mex_engine/host_camera.h"

#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {

mxArray* created_cameras(const Pictured_camera* cameras, std::size_t n) {
  static const char* names[] = {"model", "parameters", "image_size", "fold"};
  mxArray* created = mxCreateStructMatrix(1, static_cast<mwSize>(n), 4, names);
  for (std::size_t i = 0; i < n; ++i) {
    const auto& [lens, size] = cameras[i];
    const auto k = static_cast<mwIndex>(i);
    const double angle = largest_angle(lens);
    mxSetFieldByNumber(created, k, 0, mxCreateString(lens.model->name));
    mxSetFieldByNumber(created, k, 1, created_row(lens.given, lens.model->num_parameters()));
    mxSetFieldByNumber(created, k, 2, created_row(size, size[0] > 0.0 ? 2 : 0));
    mxSetFieldByNumber(created, k, 3, created_row(&angle, 1));
  }
  return created;
}

std::string fold_sentence(const std::string& subject, const Lens& lens) {
  constexpr int num_digits = 4;
  constexpr double degree = 3.14159265358979323846 / 180.0;
  return subject + " folds inside its picture: from about " + text_of(fold_in_pixels(lens), num_digits) +
         " pixels around the principal point on, at " + text_of(largest_angle(lens) / degree, num_digits) +
         " degrees to the axis, nothing has an image.";
}

}  // namespace kelvane::mex_engine
