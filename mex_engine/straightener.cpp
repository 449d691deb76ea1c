// SPDX-License-Identifier: BSD-3-Clause
// By the radius.
#include "mex_engine/straightener.h"

#include <cmath>

#include "mex_engine/sentence.h"
#include "model_files/paths.h"

namespace kelvane::mex_engine {

bool Straightener::straighten(double* pixel) {
  if (lens_.is_straight()) return true;  // to the last bit
  const double x = (pixel[0] - view_.K[2]) / view_.K[0];
  const double y = (pixel[1] - view_.K[3]) / view_.K[1];
  const double radius = std::sqrt(x * x + y * y);
  const double factor = radius == 0.0 ? 1.0 : lens_.straight(radius) / radius;
  pixel[0] = view_.K[0] * (x * factor) + view_.K[2];
  pixel[1] = view_.K[1] * (y * factor) + view_.K[3];
  const bool is_good = std::isfinite(pixel[0]) && std::isfinite(pixel[1]);
  if (!is_good) ++num_beyond_;
  return is_good;
}

void Straightener::warn(std::vector<std::string>& warnings) const {
  if (num_beyond_ == 0) return;
  const std::string sentence = shown(view_.name) + ": " + text(num_beyond_) + " of " +
                               text(view_.num_points + num_beyond_) +
                               " pixels lie beyond what its lens can see, and are left out.";
  warnings.insert(warnings.end(), {"beyondLens", sentence});
}

}  // namespace kelvane::mex_engine
