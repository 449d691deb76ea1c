// SPDX-License-Identifier: BSD-3-Clause
// Text forms of OpenCV's rectangles, sizes and image headers.
#include "fw_tools/Opencv_io.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>

namespace fw {
namespace {

constexpr int num_parameters = 4;
using Fields = std::array<int*, num_parameters>;  // null: read, but stored nowhere

void store_token(const std::string& token, const Fields& fields, int parameter) {
  int* field = fields[static_cast<std::size_t>(parameter)];
  if (field != nullptr) *field = static_cast<int>(std::strtol(token.c_str(), nullptr, 10));
}

/// Whether a character that is not white space was there to read.
bool read_character(std::istream& stream, char& c) { return static_cast<bool>((stream >> std::ws).get(c)); }

void read_tuple(std::istream& stream, const char* type, const Fields& fields) {
  if (!stream.good()) return;
  char c = '\0';
  const std::string first = read_character(stream, c) ? std::string(1, c) : "";
  if (first != "(") throw std::logic_error(text(type, " input operator : first char was ", first, " not (\n"));

  std::string token;
  int parameter = 0;
  while (parameter < num_parameters && read_character(stream, c)) {
    if (c == ')' || c == ',') {
      store_token(token, fields, parameter);
      token.clear();
      ++parameter;
    } else if (c < '0' || c > '9') {  // a digit is accepted and not added to the token
      throw std::logic_error(text(type, " input operator : non numeric character ", c, " found when processing param ",
                                  parameter, " (only integers are allowed)\n"));
    }
  }
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const cv::Size& size) {
  return stream << "(" << size.width << "," << size.height << ")";
}

std::ostream& operator<<(std::ostream& stream, const cv::Rect& rectangle) {
  return stream << "(" << rectangle.x << "," << rectangle.y << "," << rectangle.width << "," << rectangle.height << ")";
}

std::istream& operator>>(std::istream& stream, cv::Size& size) {
  read_tuple(stream, "cv::Size", {&size.width, &size.height, nullptr, nullptr});
  return stream;
}

std::istream& operator>>(std::istream& stream, cv::Rect& rectangle) {
  read_tuple(stream, "cv::Rect", {&rectangle.x, &rectangle.y, &rectangle.width, &rectangle.height});
  return stream;
}

#if __has_include(<opencv2/core/types_c.h>)

std::ostream& operator<<(std::ostream& stream, const CvRect& rectangle) {
  return stream << " (" << rectangle.x << "," << rectangle.y << "," << rectangle.width << "," << rectangle.height
                << ") ";
}

std::ostream& operator<<(std::ostream& stream, const IplImage& image) {
  return stream << "(" << image.width << "," << image.height << "," << image.depth << "," << image.nChannels << ")";
}

std::istream& operator>>(std::istream& stream, CvRect& rectangle) {
  read_tuple(stream, "CvRect", {&rectangle.x, &rectangle.y, &rectangle.width, &rectangle.height});
  return stream;
}

std::istream& operator>>(std::istream& stream, IplImage& image) {
  read_tuple(stream, "IplImage", {&image.width, &image.height, &image.depth, &image.nChannels});
  return stream;
}

#endif

std::string size_text(const cv::Size& size) {
  std::ostringstream stream = classic_stream();
  stream << size;
  return stream.str();
}

}  // namespace fw
