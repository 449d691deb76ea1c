// SPDX-License-Identifier: BSD-3-Clause
// The context blocks of the linear Taylor solver.
#pragma once

#include <string>

#include "support/matchers.h"

namespace support {

inline std::string inner_optimise_block(int line, const std::string& details, int level = 0) {
  return block("fw_opt/linear_taylor_solver.cpp", line,
               "virtual void fw::Linear_taylor_solver::inner_optimise(const std::vector<double, std::allocator<double> "
               ">&, const std::vector<double, std::allocator<double> >&, std::vector<double, std::allocator<double> "
               ">&, double&, int)",
               details, level);
}

}  // namespace support
