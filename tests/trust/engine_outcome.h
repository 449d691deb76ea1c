// SPDX-License-Identifier: BSD-3-Clause
// What any call of kelvane_engine may end in: what was asked for, or an error of its own. Nothing else.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string>
#include <type_traits>
#include <vector>

#include "mex_host.h"
#include "trust/engine_calls.h"
#include "trust/tested_call.h"

namespace trust::engine {

/// An identifier and a whole sentence of ours, with nothing of C++ in it; what stands in quotes is the caller's.
inline bool is_told(const std::string& identifier, const std::string& message) {
  std::string own = message;
  const std::size_t quote = message.find('\'');
  if (quote != std::string::npos) own.erase(quote, message.rfind('\'') - quote + 1);
  const bool is_whole = !own.empty() && (own.back() == '.' || own == "out of memory");
  return identifier.rfind("kelvane:", 0) == 0 && identifier.size() > 8 && is_whole &&
         own.find("::") == std::string::npos && own.find("std") == std::string::npos;
}

inline bool is_error(const mex_host::Result& result) {
  return is_told(result.identifier, result.message) && !result.output && !result.has_assigned_other_outputs;
}

/// Of 'refine', whose arrays have a column or an element for each problem.
inline bool are_results(const mxArray& output) {
  const auto& names = output.field_names;
  return output.class_name == "struct" && std::find(names.begin(), names.end(), "is_found") != names.end();
}

inline std::size_t num_results(const mxArray& results) { return mex_host::field(results, "is_found").columns; }

inline mxArray columns_of(const mxArray& all, std::size_t first, std::size_t count) {
  const auto part = [&](const auto& values) {
    const std::size_t size = all.columns == 0 ? 0 : values.size() / all.columns;
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first * size);
    return std::decay_t<decltype(values)>(begin, begin + static_cast<std::ptrdiff_t>(count * size));
  };
  mxArray columns = mex_host::other_class(all.class_name, all.rows, count);
  columns.values = part(all.values);
  columns.bytes = part(all.bytes);
  columns.elements = part(all.elements);
  return columns;
}

/// What the results say of one problem: the same fields with its part of each array.
inline mxArray row_of(const mxArray& results, std::size_t k) {
  mxArray row = mex_host::other_class("struct");
  row.field_names = results.field_names;
  for (std::size_t i = 0; i < results.elements.size(); ++i) {
    const mxArray& all = results.elements[i].at(0);
    std::size_t first = k;
    std::size_t count = 1;
    if (row.field_names[i] == "steps") {
      const std::vector<double>& counts = mex_host::field(results, "num_steps").values;
      const auto number = counts.begin() + static_cast<std::ptrdiff_t>(k);
      first = static_cast<std::size_t>(std::accumulate(counts.begin(), number, 0.0));
      count = static_cast<std::size_t>(*number);
    } else if (row.field_names[i] == "message") {  // an empty element stands for the same text again
      while (first > 0 && all.elements.at(first).empty()) --first;
    }
    row.elements.push_back({columns_of(all, first, count)});
  }
  return row;
}

/// How a problem ended.
enum class End { over, error, on_the_way, wrong };

/// Right angles and unit lengths, and a finite centre.
inline bool is_pose(const std::vector<double>& pose, double rounding = 1e-12) {
  bool is_good = pose.size() == 12 && std::isfinite(pose[9] + pose[10] + pose[11]);
  for (std::size_t i = 0; is_good && i < 9; ++i) {
    const double* a = &pose[i / 3 * 3];
    const double* b = &pose[i % 3 * 3];
    is_good = std::fabs(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] - (a == b ? 1.0 : 0.0)) < rounding;
  }
  return is_good;
}

/// A text of one problem, '' where there is none.
inline std::string text_of(const mxArray& row, const char* name) {
  const auto& place = mex_host::field(row, name).elements.at(0);
  return place.empty() ? std::string() : mex_host::characters(place[0]);
}

/// With which a problem goes on, [] where it is over.
inline mxArray state_of(const mxArray& results, std::size_t k) {
  const auto& place = mex_host::field(results, "state").elements.at(k);
  return place.empty() ? mex_host::row({}) : place[0];
}

inline End end_of(const mxArray& row) {
  const bool is_found = mex_host::field(row, "is_found").bytes.at(0) != 0;
  const bool has_state = !mex_host::field(row, "state").elements.at(0).empty();
  if (const std::string identifier = text_of(row, "identifier"); !identifier.empty()) {
    return is_told(identifier, text_of(row, "message")) && !is_found && !has_state ? End::error : End::wrong;
  }
  const std::vector<double>& figures = mex_host::field(row, "figures").values;
  const std::vector<double>& pose = mex_host::field(row, "pose").values;
  const bool is_estimate = mex_host::field(row, "is_estimate").bytes.at(0) != 0;
  // Of an estimate in doubt there may be no pose at all.
  const bool has_none = is_estimate && is_found && (figures.at(0) == -4.0 || figures.at(0) == -8.0) &&
                        std::all_of(pose.begin(), pose.end(), [](double number) { return std::isnan(number); });
  // A start that is the best comes back as it was given, a rotation to six digits.
  const bool may_be_start = is_found && figures.at(2) == figures.at(1);
  if (!has_none && !is_pose(pose, may_be_start ? 1e-4 : 1e-12)) return End::wrong;
  if (has_state) return is_found ? End::wrong : End::on_the_way;
  const bool is_worse = figures.at(2) > figures.at(1);  // a start without a finite cost is neither
  return is_found && !is_worse && !text_of(row, "message").empty() ? End::over : End::wrong;
}

inline End end_of(const mxArray& results, std::size_t k) { return end_of(row_of(results, k)); }

inline testing::AssertionResult end_well(const mxArray& results) {
  for (std::size_t k = 0; k < num_results(results); ++k) {
    if (end_of(results, k) == End::wrong) return testing::AssertionFailure() << "problem " << k << " has no result";
  }
  return testing::AssertionSuccess();
}

/// One of both, with the inputs as they were and the host's rules kept.
inline testing::AssertionResult ends_well(const mex_host::Result& result) {
  const auto refused = [&](const std::string& what) {
    return testing::AssertionFailure() << what << "; " << result.identifier << " " << result.message;
  };
  if (const auto order = is_in_order(result); !order) return refused(order.message());
  if (is_error(result)) return testing::AssertionSuccess();
  if (!result.identifier.empty() || !result.message.empty()) return refused("an error that is none of ours");
  if (!result.output) return refused("neither an output nor an error");
  if (result.output->class_name != "struct" || result.output->field_names.size() < 5)
    return testing::AssertionSuccess();
  return are_results(*result.output) ? end_well(*result.output) : testing::AssertionSuccess();
}

/// With what was asked for, and no problem that has failed.
inline testing::AssertionResult gives_results(const mex_host::Result& result) {
  const testing::AssertionResult verdict = ends_well(result);
  if (!verdict) return verdict;
  if (!result.output) return testing::AssertionFailure() << result.identifier << " " << result.message;
  for (std::size_t k = 0; are_results(*result.output) && k < num_results(*result.output); ++k) {
    const mxArray row = row_of(*result.output, k);
    if (end_of(row) != End::error) continue;
    return testing::AssertionFailure() << text_of(row, "message");
  }
  return verdict;
}

/// An error of the call.
inline testing::AssertionResult gives_error(const mex_host::Result& result) {
  const testing::AssertionResult verdict = ends_well(result);
  return !verdict || is_error(result) ? verdict : testing::AssertionFailure() << "no error";
}

}  // namespace trust::engine
