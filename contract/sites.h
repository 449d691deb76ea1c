// SPDX-License-Identifier: BSD-3-Clause
// Where the reports of one call say that they were made.
#pragma once

#include "fw_tools/report.h"

namespace kelvane::contract::site {

inline constexpr const char* file = "kelvane_mex.cpp";
inline constexpr const char* signature = "void mexFunction(int, mxArray**, int, const mxArray**)";

// The checks of the arguments: the numbers rise in the order of the checks.
inline constexpr fw::Site num_inputs{file, 1742, signature};
inline constexpr fw::Site num_outputs{file, 1756, signature};
inline constexpr fw::Site rotation_type_scalar{file, 1764, signature};
inline constexpr fw::Site rotation_type_value{file, 1773, signature};
inline constexpr fw::Site camera_class{file, 1790, signature};
inline constexpr fw::Site camera_shape{file, 1793, signature};
inline constexpr fw::Site camera_size{file, 1797, signature};
inline constexpr fw::Site points_class{file, 1804, signature};
inline constexpr fw::Site points_size{file, 1807, signature};
inline constexpr fw::Site points_number{file, 1811, signature};
inline constexpr fw::Site observations_class{file, 1818, signature};
inline constexpr fw::Site observations_size{file, 1822, signature};
inline constexpr fw::Site criteria_class{file, 1831, signature};
inline constexpr fw::Site criteria_shape{file, 1834, signature};
inline constexpr fw::Site criteria_size{file, 1837, signature};
inline constexpr fw::Site weights_size{file, 1868, signature};

// The refinement itself.
inline constexpr fw::Site no_jacobian{file, 1971, signature};
inline constexpr fw::Site refinement{file, 2003, signature};

}  // namespace kelvane::contract::site
