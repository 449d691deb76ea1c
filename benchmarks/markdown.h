// SPDX-License-Identifier: BSD-3-Clause
// Markdown tables that are as readable on a console.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace bench {

/// The first column is aligned left, the others right.
class Table {
 public:
  explicit Table(std::vector<std::string> header) : rows_{std::move(header)} {}
  /// As many cells as the header has.
  void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  /// With an empty line behind it.
  void print(std::ostream& out) const;

 private:
  std::vector<std::size_t> widths() const;

  std::vector<std::vector<std::string>> rows_;
};

/// Three significant digits, without an exponent between 0.001 and a million.
std::string number(double value);

}  // namespace bench
