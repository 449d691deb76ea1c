// SPDX-License-Identifier: BSD-3-Clause
// The distortion of a view's pixels, removed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "mex_engine/model_views.h"
#include "model_files/radial_lens.h"

namespace kelvane::mex_engine {

/// Pixels to where a camera without distortion sees them; counts what the lens cannot have seen.
class Straightener {
 public:
  Straightener(const Model_view& view, const double (&radial)[2]) : view_(view), lens_(radial[0], radial[1]) {}

  /// False where it cannot have been seen.
  bool straighten(double* pixel);
  /// Adds a warning where there were such, once the view's points are counted.
  void warn(std::vector<std::string>& warnings) const;

 private:
  const Model_view& view_;
  Radial_lens lens_;
  std::size_t num_beyond_ = 0;
};

}  // namespace kelvane::mex_engine
