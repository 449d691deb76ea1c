// SPDX-License-Identifier: BSD-3-Clause
// The error of a system with fewer equations than unknowns.
#pragma once

#include <exception>

namespace fw {

/// What cv::solve of OpenCV 4.6 says, word for word: published text.
class Underdetermined_system final : public std::exception {
 public:
  /// The whole sentence with its place.
  const char* what() const noexcept override {
    return "OpenCV(4.6.0) ./modules/core/src/lapack.cpp:1244: error: (-5:Bad argument) The function can not solve "
           "under-determined linear systems in function 'solve'\n";
  }
};

}  // namespace fw
