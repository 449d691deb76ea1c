// SPDX-License-Identifier: BSD-3-Clause
// A matrix from its rows, written as a matrix.
#pragma once

#include <vector>

#include "fw_tools/matrix.h"

namespace support {

inline fw::matrix<double> matrix_of(const std::vector<std::vector<double>>& rows) {
  fw::matrix<double> m(static_cast<int>(rows.size()), static_cast<int>(rows.front().size()));
  for (unsigned i = 0; i < rows.size(); ++i) {
    for (unsigned j = 0; j < rows[i].size(); ++j) m.set(i, j, rows[i][j]);
  }
  return m;
}

}  // namespace support
