// SPDX-License-Identifier: BSD-3-Clause
// The table of the ten rotation types.
#pragma once

#include <cstddef>

namespace kelvane {

struct Chart;

/// How the rotation entries of the search vector are read.
enum class Representation {
  rotation_vector,  ///< 3 entries: unit axis times angle, radians
  angle_axis,       ///< 4 entries: axis of any length but zero, then the angle, radians
  quaternion        ///< 4 entries: x, y, z, w; of any length but zero
};

/// One row of the table: all that follows from a rotation type alone.
struct Rotation_type {
  int id;                         ///< the number that callers pass
  const char* name;               ///< as in usage texts
  Representation representation;  ///< of the search vector; for a hybrid type the first one of its name
  int observation_size;           ///< rows of the observations, and equations per point and block: 2 pixels, 3 bearings
  int num_representations;        ///< how many times the equations are stacked: 3 for hybrids
  /// The rotation of each block, differentiated by the rotation entries r of the search vector.
  void (*models)(const double* r, Chart* blocks);

  /// Rotation entries of the search vector; the camera centre follows them.
  constexpr int rotation_size() const { return representation == Representation::rotation_vector ? 3 : 4; }
  /// Entries of the search vector: 6 or 7.
  constexpr int num_dimensions() const { return rotation_size() + 3; }
  /// Whether observations are camera-frame vectors instead of pixels.
  constexpr bool is_bearing() const { return observation_size == 3; }
  /// The step in each rotation entry when derivatives are taken by differences.
  constexpr double difference_step() const { return representation == Representation::quaternion ? 0.314 : 0.0314; }
};

inline constexpr std::size_t max_blocks = 3;  ///< of a type

/// The row of `id`, or null when there is none.
const Rotation_type* find_rotation_type(int id);

/// The rotation matrix of a prediction (docs/derivations.md, Eqs. 2 to 4).
void predicted_rotation(Representation representation, const double* r, double (&R)[3][3]);

}  // namespace kelvane
