// SPDX-License-Identifier: BSD-3-Clause
// Fuzz target: the readers of OpenCV's types on any text, and element access at any place.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>

#include "fuzz/byte_source.h"
#include "fuzz/target.h"
#include "fw_tools/IplImage_overloads.h"
#include "fw_tools/Opencv_io.h"

namespace {

constexpr int untouched = 77;
constexpr double max_elements = 10000;

void require(bool is_true, const char* what) {
  if (is_true) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

/// Reads, and refuses at most with an exception of the standard library's family.
template <typename Value>
bool was_read(const std::string& text, Value& value) {
  using fw::operator>>;
  std::istringstream stream(text);
  try {
    stream >> value;
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

/// Every field is as it was, or zero.
template <std::size_t size>
void check_fields(const std::array<int, size>& fields) {
  bool is_untouched_from_here = false;
  for (const int field : fields) {
    require(field == 0 || field == untouched, "a field holds what no reader stores");
    require(field != 0 || !is_untouched_from_here, "a field was stored before the one in front of it");
    is_untouched_from_here = field == untouched;
  }
}

/// The reader makes a matrix of whatever size the text asks for, so that the text must not ask for too much.
bool is_small_matrix(const std::string& text) {
  std::istringstream stream(text);
  int rows = 0;
  int columns = 0;
  stream >> rows >> columns;
  return rows <= 0 || columns <= 0 || static_cast<double>(rows) * columns <= max_elements;
}

void read_matrix(fuzz::Byte_source& bytes) {
  constexpr std::array<int, 4> types{CV_64FC1, CV_64FC2, CV_32FC1, CV_8UC3};
  cv::Mat m = cv::Mat::zeros(static_cast<int>(bytes.choice(4)), static_cast<int>(bytes.choice(4)),
                             types[bytes.choice(8) % types.size()]);
  const std::string text = bytes.rest();
  if (!is_small_matrix(text)) return;
  if (was_read(text, m)) require(m.type() == CV_64FC1 && m.total() > 0, "a matrix of no doubles was read");
}

/// Either an error or an element inside the matrix, and an element whenever there is one.
void access_element(fuzz::Byte_source& bytes) {
  const int depth = static_cast<int>(bytes.choice(8));
  const int channels = 1 + static_cast<int>(bytes.choice(6));
  cv::Mat m = cv::Mat::zeros(static_cast<int>(bytes.choice(5)), static_cast<int>(bytes.choice(5)),
                             CV_MAKETYPE(depth, channels));
  const int x = static_cast<std::int8_t>(bytes.byte());
  const int y = static_cast<std::int8_t>(bytes.byte());
  const int channel = static_cast<std::int8_t>(bytes.byte());
  const bool is_there = x >= 0 && x < m.cols && y >= 0 && y < m.rows && channel >= 0 && channel < channels &&
                        channels <= 4 && depth == CV_64F;
  try {
    double& element = fw::get_pix<double>(m, x, y, channel);
    require(is_there, "an element was found where none is");
    element = 1.0;  // outside the matrix this is seen by the address sanitizer
    require(cv::norm(m.reshape(1), cv::NORM_L1) == 1.0, "not one element was set");
  } catch (const fw::exception_l&) {
    require(!is_there, "an element was not found");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Byte_source bytes(data, size);
  const std::size_t reader = bytes.choice(6);
  if (reader == 4) {
    read_matrix(bytes);
  } else if (reader == 5) {
    access_element(bytes);
  } else if (reader == 0) {
    cv::Size read(untouched, untouched);
    was_read(bytes.rest(), read);
    check_fields<2>({read.width, read.height});
  } else if (reader == 1) {
    cv::Rect read(untouched, untouched, untouched, untouched);
    was_read(bytes.rest(), read);
    check_fields<4>({read.x, read.y, read.width, read.height});
  } else if (reader == 2) {
    CvRect read{untouched, untouched, untouched, untouched};
    was_read(bytes.rest(), read);
    check_fields<4>({read.x, read.y, read.width, read.height});
  } else {
    IplImage read{};
    read.width = read.height = read.depth = read.nChannels = untouched;
    was_read(bytes.rest(), read);
    check_fields<4>({read.width, read.height, read.depth, read.nChannels});
  }
  return 0;
}
