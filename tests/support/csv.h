// SPDX-License-Identifier: BSD-3-Clause
// Numeric tables from files of comma-separated values with one header line.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

/// The rows below the header. A file that cannot be read is an error.
inline std::vector<std::vector<double>> read_csv(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::string line;
  std::getline(file, line);
  std::vector<std::vector<double>> rows;
  while (std::getline(file, line)) {
    std::istringstream cells(line);
    std::vector<double> row;
    for (std::string cell; std::getline(cells, cell, ',');) row.push_back(std::stod(cell));
    rows.push_back(row);
  }
  return rows;
}

}  // namespace support
