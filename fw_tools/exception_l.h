// SPDX-License-Identifier: BSD-3-Clause
// The one exception type of the module: a layered report and its nesting level.
#pragma once

#include <exception>
#include <memory>
#include <string>

namespace fw {

/// An error report. Level 0 is the report of the place that found the fault; every caller that adds its own context
/// block raises the level by one. The text is composed by the thrower (see report.h); nothing is added to it here.
class exception_l : public std::exception {
 public:
  ~exception_l() override;

  /// The whole report; valid as long as this exception or a copy of it lives.
  const char* what() const noexcept override;

  /// The whole text of a report and its level.
  exception_l(const std::string& message, int level);
  /// Shares the text.
  exception_l(const exception_l&) noexcept = default;
  /// Shares the text.
  exception_l& operator=(const exception_l&) noexcept = default;

  /// How many callers have added context since the fault, or since an exception of another library was caught.
  int get_level() const noexcept { return level_; }

 private:
  std::shared_ptr<const std::string> message_;  // shared, so that copying an exception in flight cannot throw
  int level_;
};

}  // namespace fw
