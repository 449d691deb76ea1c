// SPDX-License-Identifier: BSD-3-Clause
// One matcher for numbers and one for reports.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "fw_tools/exception_l.h"
#include "fw_tools/matrix.h"
#include "fw_tools/report.h"

namespace support {

/// Numbers with their shape, whatever held them.
struct Table {
  std::size_t rows, columns;
  std::vector<double> values;  // row-major

  Table(const std::vector<double>& vector)  // NOLINT(google-explicit-constructor): a matcher's argument
      : rows(vector.size()), columns(1), values(vector) {}
  Table(const fw::matrix<double>& m)  // NOLINT(google-explicit-constructor): the same
      : rows(static_cast<std::size_t>(m.get_dim1())), columns(static_cast<std::size_t>(m.get_dim2())) {
    for (int i = 0; i < m.get_dim1(); ++i) {
      const double* row = m[static_cast<unsigned>(i)];
      values.insert(values.end(), row, row + m.get_dim2());
    }
  }
  template <typename Mat, typename = decltype(Mat::cols)>  // cv::Mat, for those who have it
  Table(const Mat& m)                                      // NOLINT(google-explicit-constructor): the same
      : rows(static_cast<std::size_t>(m.rows)), columns(static_cast<std::size_t>(m.cols)) {
    for (int i = 0; i < m.rows; ++i) {
      const double* row = m.template ptr<double>(i);
      values.insert(values.end(), row, row + m.cols);
    }
  }
};

/// Shape, then finiteness, then the worst element. The tolerance is relative to max(1, largest expected value).
inline testing::AssertionResult is_close(const Table& actual, const Table& expected, double tolerance) {
  if (actual.rows != expected.rows || actual.columns != expected.columns) {
    return testing::AssertionFailure() << "shape " << actual.rows << " by " << actual.columns << ", expected "
                                       << expected.rows << " by " << expected.columns;
  }
  double scale = 1.0;
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    for (const double value : {actual.values[i], expected.values[i]}) {
      if (!std::isfinite(value)) {
        return testing::AssertionFailure()
               << "element " << i << " is not finite: " << actual.values[i] << ", expected " << expected.values[i];
      }
    }
    scale = std::max(scale, std::abs(expected.values[i]));
  }
  std::size_t worst = 0;
  double worst_difference = 0.0;
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    const double difference = std::abs(actual.values[i] - expected.values[i]);
    if (difference > worst_difference) {
      worst = i;
      worst_difference = difference;
    }
  }
  if (worst_difference <= tolerance * scale) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "element (" << worst / expected.columns << ", " << worst % expected.columns
                                     << ") is " << testing::PrintToString(actual.values[worst]) << ", expected "
                                     << testing::PrintToString(expected.values[worst]) << ": off by "
                                     << worst_difference << " at scale " << scale << ", allowed " << tolerance;
}

/// What a failing action threw: text and level of an exception_l, or the text of another exception and level -1.
/// Without a failure the text is "nothing thrown" and the level -2.
struct Caught {
  std::string text;
  int level;
};

inline Caught caught_by(const std::function<void()>& action) {
  try {
    action();
  } catch (const fw::exception_l& error) {
    return {error.what(), error.get_level()};
  } catch (const std::exception& error) {
    return {error.what(), -1};
  }
  return {"nothing thrown", -2};
}

/// The three lines of a context block, each indented by `level` tabs.
inline std::string block(const std::string& file, int line, const std::string& signature, const std::string& details,
                         int level = 0) {
  const std::string indent(static_cast<std::size_t>(level), '\t');
  return indent + file + "(" + std::to_string(line) + ")\n" + indent + signature + "\n" + indent +
         "Details: " + details + "\n";
}

}  // namespace support
