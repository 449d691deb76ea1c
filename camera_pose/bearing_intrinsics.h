// SPDX-License-Identifier: BSD-3-Clause
// What bearing vectors ask of the intrinsic matrix.
#pragma once

#include "fw_tools/report.h"

namespace kelvane {

/// Raises "For bearing vectors, expected k to be identity, instead got ..." (kelvane_mex.cpp, 1662) when K(0,0),
/// K(1,1), K(0,2) or K(1,2) is further than 0.0001 from the identity's. The other entries are not looked at.
void check_bearing_intrinsics(const double (&K)[3][3]);

namespace site {
inline constexpr fw::Site bearing_intrinsics{
    "kelvane_mex.cpp", 1662,
    "virtual std::vector<double> Camera_position_opt_func::operator()(const std::vector<double>&) const"};
}  // namespace site

}  // namespace kelvane
