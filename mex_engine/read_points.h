// SPDX-License-Identifier: BSD-3-Clause
// Points, observations and weights in the layouts that hosts use.
#pragma once

#include "mex_engine/host_numbers.h"
#include "pose_refinement/bad_argument.h"

namespace kelvane::mex_engine {

/// Numbers with one point in each column, and whether they came in rows.
struct Columns {
  Host_numbers numbers;
  bool is_turned = false;
};

/// 2 x N or N x 2 pixels, 3 x N or N x 3 directions; 3 x 3 are columns. Throws Bad_argument.
/// 2 x 2 lie as the points do, if any are given, 3 x 2 or 2 x 3.
Columns read_observations(const mxArray* array, const mxArray* points);
/// 3 x N or N x 3 points for observations that lie in columns or in rows, as 3 x 3 points do then.
Columns read_points(const mxArray* array, const Columns& observations);
/// The same of any number; 3 x 3 are columns.
Columns read_points(const mxArray* array);
/// One for each of the points or for each observed number, or [] for none.
Columns read_weights(const mxArray* array, const Columns& observations);

/// Where the numbers of an error are in the host's array: "points(1, 3)". The error's number counts along the columns.
std::string place_of(const Bad_argument& error, const char* name, const Columns& columns);

/// The array for the host: [] where its own is the same.
mxArray* written_columns(const Columns& columns);
/// Directions at unit length.
mxArray* written_directions(const Columns& columns);

}  // namespace kelvane::mex_engine
