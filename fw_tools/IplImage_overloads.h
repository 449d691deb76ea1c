// SPDX-License-Identifier: BSD-3-Clause
// Checked element access into a cv::Mat.
#pragma once

#include <cstddef>
#include <opencv2/core.hpp>

#include "fw_tools/report.h"

namespace fw {

/// A reference into the matrix's own data: channel `channel` of the element in column x and row y, all from 0. The
/// matrix must hold elements of type T (double) in 1 to 4 channels.
/// Raises, in this order of checks (fw_tools/IplImage_overloads.h): 177 position outside the matrix, 181 no such
/// channel, 188, 192, 196 element of 1, 2, 4 bytes, 202 unknown depth, 219 more than 4 channels.
template <typename T>
T& get_pix(cv::Mat& image, int x, int y, int channel);

/// get_pix(image, 0, y, 0): row y of a column vector.
template <typename T>
T& get_pix(cv::Mat& image, int y);

namespace site {
inline constexpr const char* get_pix_file = "fw_tools/IplImage_overloads.h";
inline constexpr const char* get_pix_signature = "T& fw::get_pix(cv::Mat&, int, int, int) [with T = double]";
inline constexpr Site get_pix_position{get_pix_file, 177, get_pix_signature};
inline constexpr Site get_pix_channel{get_pix_file, 181, get_pix_signature};
inline constexpr Site get_pix_one_byte{get_pix_file, 188, get_pix_signature};
inline constexpr Site get_pix_two_bytes{get_pix_file, 192, get_pix_signature};
inline constexpr Site get_pix_four_bytes{get_pix_file, 196, get_pix_signature};
inline constexpr Site get_pix_unknown_depth{get_pix_file, 202, get_pix_signature};
inline constexpr Site get_pix_too_many_channels{get_pix_file, 219, get_pix_signature};
}  // namespace site

namespace get_pix_detail {

inline void check_position(const cv::Mat& image, int x, int y) {
  if (x >= 0 && x < image.cols && y >= 0 && y < image.rows) return;
  raise(site::get_pix_position, text("get_pix(): Pixel lookup at (", x, ",", y, ") but image dimensions are (",
                                     image.cols, ",", image.rows, ")"));
}

inline void check_channel(const cv::Mat& image, int channel) {
  if (channel >= 0 && channel < image.channels()) return;
  raise(site::get_pix_channel,
        text("get_pix(): Pixel lookup from channel ", channel, " but image only has ", image.channels(), " channels."));
}

[[noreturn]] inline void refuse_element_size(const Site& site, std::size_t template_size, int image_size) {
  raise(site, text("Template parameter had size of ", template_size, " bytes, but image depth specified ", image_size));
}

template <typename T>
void check_element_type(const cv::Mat& image) {
  static_assert(sizeof(T) == 8, "only 64-bit floating point elements are accepted");
  switch (image.depth()) {
    case CV_64F:
      return;
    case CV_8U:
    case CV_8S:
      refuse_element_size(site::get_pix_one_byte, sizeof(T), 1);
    case CV_16U:
    case CV_16S:
      refuse_element_size(site::get_pix_two_bytes, sizeof(T), 2);
    case CV_32S:
    case CV_32F:
      refuse_element_size(site::get_pix_four_bytes, sizeof(T), 4);
    default:
      raise(site::get_pix_unknown_depth, text("Image had unrecognised depth flag ", image.depth()));
  }
}

}  // namespace get_pix_detail

template <typename T>
T& get_pix(cv::Mat& image, int x, int y, int channel) {
  get_pix_detail::check_position(image, x, y);
  get_pix_detail::check_channel(image, channel);
  get_pix_detail::check_element_type<T>(image);
  const int channels = image.channels();
  if (channels > 4) {
    raise(site::get_pix_too_many_channels,
          text("get_pix<template> : number of image channels was not 1-4, value was : ", channels));
  }
  return image.ptr<T>(
      y)[static_cast<std::size_t>(x) * static_cast<std::size_t>(channels) + static_cast<std::size_t>(channel)];
}

template <typename T>
T& get_pix(cv::Mat& image, int y) {
  get_pix_detail::check_position(image, 0, y);
  get_pix_detail::check_element_type<T>(image);
  return image.ptr<T>(y)[0];
}

}  // namespace fw
