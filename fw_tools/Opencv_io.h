// SPDX-License-Identifier: BSD-3-Clause
// Text forms of OpenCV's rectangles, sizes, image headers and matrices.
//
// The tuple readers accept "(" and then numbers closed by "," or ")", and refuse every other character (a minus sign
// too) with std::logic_error. The digits themselves never reach the stored fields: each field read becomes 0. A reader
// does not stop at ")": those of four fields end after the fourth number, the one of cv::Size reads on until the stream
// ends or four numbers have gone by. On a stream that is not good they change nothing.
#pragma once

#include <istream>
#include <opencv2/core.hpp>
#include <ostream>
#include <string>

#include "fw_tools/report.h"

// OpenCV 5 has removed the legacy structures.
#if __has_include(<opencv2/core/types_c.h>)
#include <opencv2/core/types_c.h>
#endif

namespace fw {

/// "(width,height)"
std::ostream& operator<<(std::ostream& stream, const cv::Size& size);
/// "(x,y,width,height)"
std::ostream& operator<<(std::ostream& stream, const cv::Rect& rectangle);
/// Reads two fields: width, height.
std::istream& operator>>(std::istream& stream, cv::Size& size);
/// Reads four fields: x, y, width, height.
std::istream& operator>>(std::istream& stream, cv::Rect& rectangle);

#if __has_include(<opencv2/core/types_c.h>)
/// " (x,y,width,height) ", with a blank on either side
std::ostream& operator<<(std::ostream& stream, const CvRect& rectangle);
/// "(width,height,depth,nChannels)"
std::ostream& operator<<(std::ostream& stream, const IplImage& image);
/// Reads four fields: x, y, width, height.
std::istream& operator>>(std::istream& stream, CvRect& rectangle);
/// Reads four fields: width, height, depth, nChannels; nothing else of the header is changed.
std::istream& operator>>(std::istream& stream, IplImage& image);
#endif

/// Reads the row count, the column count and the elements row by row, separated by white space. m must hold something:
/// it is resampled to the new size, then overwritten; OpenCV refuses to do so where a count is below 1
/// or m is empty.
/// Raises "operator>> cv::Mat : mat type was not doubles, ..." (fw_tools/Opencv_io.cpp, 172) unless m has one channel
/// of doubles. Needs OpenCV's imgproc.
std::istream& operator>>(std::istream& stream, cv::Mat& m);

/// The text form of a size in a report.
std::string size_text(const cv::Size& size);

namespace site {
inline constexpr Site mat_reader{"fw_tools/Opencv_io.cpp", 172,
                                 "std::istream& fw::operator>>(std::istream&, cv::Mat&)"};
}  // namespace site

}  // namespace fw
