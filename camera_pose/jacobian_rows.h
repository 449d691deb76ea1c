// SPDX-License-Identifier: BSD-3-Clause
// The rows of all points for one projection, piece by piece.
#pragma once

#include <cstddef>

#include "camera_pose/packed_points.h"
#include "camera_pose/projection.h"
#include "fw_opt/packed_equations.h"

/// Gives the sink the pixel rows (or those of bearing vectors) of all points; the first of them is row `first_row` in
/// packed order. n_r is 3 or 4.
template <std::size_t n_r>
void write_jacobian_rows(const Packed_points& points, const Projection<n_r>& projection, bool is_bearing,
                         std::size_t first_row, fw::Row_sink& sink);
