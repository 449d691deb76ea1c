// SPDX-License-Identifier: BSD-3-Clause
// [seen, num_without] = kelvane_engine('undistort', pixels, intrinsics, to), [pixels, num_without] =
// kelvane_engine('distort', seen, intrinsics)
#include <cmath>

#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/read_camera.h"
#include "mex_engine/read_points.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

/// 2 x N or N x 2 pixels or, where they are allowed, 3 x N or N x 3 directions; 2 x 2 and 3 x 3 are columns. NaN and
/// what is infinite are allowed: they have no ray and no pixel.
Columns read_seen(const mxArray* array, const char* name, bool with_directions) {
  Columns given{Host_numbers(array, name)};
  const std::size_t rows = given.numbers.rows();
  const std::size_t columns = given.numbers.columns();
  if (rows == 2 || (with_directions && rows == 3 && columns != 2)) return given;
  if (columns == 2 || (with_directions && columns == 3)) {
    given.numbers.transpose();
    return given;
  }
  const char* sizes = with_directions ? " must be 2 x N or N x 2 (pixels) or 3 x N or N x 3 (directions); this is "
                                      : " must be 2 x N or N x 2 (pixels); this is ";
  refuse("size", name + (sizes + text_of_size(rows, columns)) + ".");
}

/// One column of `size` numbers for each that is given, and how many are NaN.
class Seen_answer final : public Answer {
 public:
  template <typename Map>
  Seen_answer(const Host_numbers& given, std::size_t size, const Map& map)
      : size_(size), values_(size * given.columns()) {
    for (std::size_t i = 0; i < given.columns(); ++i) {
      double* const to = &values_[size * i];
      map(given.data() + given.rows() * i, to);
      if (std::isfinite(to[0] + to[1])) continue;
      for (std::size_t k = 0; k < size; ++k) to[k] = std::nan("");
      ++num_without_;
    }
  }

  void write(int num_outputs, mxArray* outputs[]) const override {
    outputs[0] = mxCreateDoubleMatrix(static_cast<mwSize>(size_), static_cast<mwSize>(values_.size() / size_), mxREAL);
    std::copy(values_.begin(), values_.end(), mxGetPr(outputs[0]));
    if (num_outputs < 2) return;
    outputs[1] = mxCreateDoubleMatrix(1, 1, mxREAL);
    *mxGetPr(outputs[1]) = static_cast<double>(num_without_);
  }

 private:
  std::size_t size_;
  std::vector<double> values_;
  std::size_t num_without_ = 0;
};

}  // namespace

std::unique_ptr<Answer> undistort_pixels(const Inputs& inputs) {
  const Columns pixels = read_seen(inputs[0], "pixels", false);
  const Lens lens = read_lens_of_pixels(inputs[1]);
  const std::string to = text_in(inputs[2], "What pixels become");
  if (to != "pixels" && to != "directions") {
    refuse("inputs", "Pixels become 'pixels' or 'directions', but not " + quoted(to) + ".");
  }
  return std::make_unique<Seen_answer>(pixels.numbers, to == "pixels" ? 2 : 3, [&](const double* pixel, double* seen) {
    double direction[3];
    unproject(lens, pixel, direction);
    if (to == "pixels") return ideal_pixel(lens, direction, seen);
    for (int k = 0; k < 3; ++k) seen[k] = direction[k];
  });
}

std::unique_ptr<Answer> distort_pixels(const Inputs& inputs) {
  const Columns given = read_seen(inputs[0], "seen", true);
  const Lens lens = read_lens_of_pixels(inputs[1]);
  const bool are_directions = given.numbers.rows() == 3;
  return std::make_unique<Seen_answer>(given.numbers, 2, [&](const double* seen, double* pixel) {
    double direction[3] = {};
    if (!are_directions) ideal_direction(lens, seen, direction);
    project(lens, are_directions ? seen : direction, pixel);
  });
}

}  // namespace kelvane::mex_engine
