// SPDX-License-Identifier: BSD-3-Clause
// Layout of tables and numbers.
#include "benchmarks/markdown.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace bench {

std::vector<std::size_t> Table::widths() const {
  std::vector<std::size_t> widths(rows_[0].size(), 3);
  for (const auto& row : rows_) {
    for (std::size_t c = 0; c < widths.size(); ++c) widths[c] = std::max(widths[c], row[c].size());
  }
  return widths;
}

void Table::print(std::ostream& out) const {
  const std::vector<std::size_t> width = widths();
  for (std::size_t r = 0; r < rows_.size(); ++r) {
    for (std::size_t c = 0; c < width.size(); ++c) {
      const std::string& cell = rows_[r][c];
      const std::string padding(width[c] - cell.size(), ' ');
      out << (c == 0 ? "| " + cell + padding : " | " + padding + cell);
    }
    out << " |\n";
    if (r > 0) continue;
    for (std::size_t c = 0; c < width.size(); ++c) {
      out << (c == 0 ? "| " + std::string(width[c], '-') : " | " + std::string(width[c] - 1, '-') + ":");
    }
    out << " |\n";
  }
  out << '\n';
}

std::string number(double value) {
  const double size = std::abs(value);
  const bool is_plain = size == 0 || (size >= 1e-3 && size < 1e6);
  const int digits_before = size < 1 ? 1 : static_cast<int>(std::log10(size)) + 1;
  char text[32];
  if (!is_plain) {
    std::snprintf(text, sizeof text, "%.1e", value);
  } else {
    const int leading_zeros = size > 0 && size < 0.1 ? (size < 0.01 ? 2 : 1) : 0;
    std::snprintf(text, sizeof text, "%.*f", std::max(0, 3 - digits_before + (size < 1 ? 1 + leading_zeros : 0)),
                  value);
  }
  return text;
}

}  // namespace bench
