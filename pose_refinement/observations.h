// SPDX-License-Identifier: BSD-3-Clause
// Points and what was seen of them, checked one by one.
#pragma once

#include <cstddef>

#include "pose_refinement/refine.h"

namespace kelvane {

/// Checks of nothing but points and what was seen of them, d numbers each; these throw Bad_argument.
void check_sizes(const Numbers& points, const Numbers& observations, std::size_t d);
void check_entries(const Numbers& points, const Numbers& observations, std::size_t d, std::size_t point);
/// Of x, y, z of any size.
double length_of_direction(const double* x);
/// Of x, y, z of any size but zero; the point is for the report.
void set_unit_direction(const double* x, std::size_t point, double* direction);

}  // namespace kelvane
