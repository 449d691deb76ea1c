// SPDX-License-Identifier: BSD-3-Clause
// The matrix reader, apart from the other operators because it alone needs OpenCV's imgproc.
#include <opencv2/imgproc.hpp>

#include "fw_tools/IplImage_overloads.h"
#include "fw_tools/Opencv_io.h"

namespace fw {

std::istream& operator>>(std::istream& stream, cv::Mat& m) {
  if (m.type() != CV_64FC1) {
    raise(site::mat_reader, text("operator>> cv::Mat : mat type was not doubles, instead it was ", m.type()));
  }
  int rows = 0;
  int columns = 0;
  stream >> rows >> columns;
  cv::resize(m, m, cv::Size(columns, rows), 0, 0, cv::INTER_LINEAR);
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) stream >> get_pix<double>(m, x, y, 0);
  }
  return stream;
}

}  // namespace fw
