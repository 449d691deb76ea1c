// SPDX-License-Identifier: BSD-3-Clause
// Where the reports of a Gauss-Newton iteration say that they were made.
#pragma once

#include "fw_tools/report.h"

namespace fw::site {

inline constexpr Site too_many_outputs{
    "fw_opt/linear_taylor_solver.cpp", 57,
    "virtual void fw::Linear_taylor_solver::inner_optimise(const std::vector<double, std::allocator<double> >&, const "
    "std::vector<double, std::allocator<double> >&, std::vector<double, std::allocator<double> >&, double&, int)"};
inline constexpr Site num_outputs{too_many_outputs.file, 80, too_many_outputs.signature};
inline constexpr Site num_targets{too_many_outputs.file, 83, too_many_outputs.signature};
inline constexpr Site num_steps{too_many_outputs.file, 106, too_many_outputs.signature};
inline constexpr Site inner_optimise{too_many_outputs.file, 200, too_many_outputs.signature};

}  // namespace fw::site
