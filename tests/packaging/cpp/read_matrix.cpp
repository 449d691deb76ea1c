// SPDX-License-Identifier: BSD-3-Clause
// Reads a matrix with the installed reader.
#include <iostream>
#include <sstream>

#include "fw_tools/Opencv_io.h"

int main() {
  using fw::operator>>;
  cv::Mat m = cv::Mat::zeros(1, 1, CV_64F);
  std::istringstream stream("2 3 1 2 3 4 5 6");
  stream >> m;
  std::cout << m << "\n";
}
