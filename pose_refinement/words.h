// SPDX-License-Identifier: BSD-3-Clause
// Names that differ from door to door.
#pragma once

#include <cstddef>

namespace kelvane {

/// How the sentences of a result name options and points.
struct Words {
  std::size_t first_number;  ///< of the first point
  const char* step_tolerance;
  const char* function_tolerance;
  const char* max_iterations;
  const char* loss_scale;
  const char* watch;
};

/// As Refine_options has them.
inline constexpr Words words_of_cpp{0, "step_tolerance", "function_tolerance", "max_iterations", "loss_scale", "watch"};

}  // namespace kelvane
