// SPDX-License-Identifier: BSD-3-Clause
// Cells with an element for each problem.
#include "mex_engine/pose_cells.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

/// From an input that may be missing or empty.
double number_or(const mxArray* array, const char* name, double otherwise) {
  if (array == nullptr) return otherwise;
  const Host_numbers numbers(array, name);
  if (numbers.size() == 0) return otherwise;
  const double number = *numbers.data();
  if (numbers.size() > 1 || !(number >= 0.0)) refuse("inputs", std::string(name) + " must be a number of 0 or more.");
  return number;
}

Deadline deadline_in(double seconds) {
  constexpr double for_ever = 1e6;
  const auto now = std::chrono::steady_clock::now();
  if (!(seconds < for_ever)) return Deadline::max();
  return now + std::chrono::duration_cast<Deadline::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

Pose_cells::Pose_cells(const Inputs& inputs, bool have_starts)
    : behind_starts_{inputs.count - (have_starts ? 1 : 0), inputs.arrays + (have_starts ? 1 : 0)},
      deadline_(deadline_in(number_or(behind_starts_[5], "seconds", std::numeric_limits<double>::infinity()))) {
  constexpr double most_threads = 1024.0;
  num_threads_ = static_cast<unsigned>(std::min(number_or(behind_starts_[6], "num_threads", 1.0), most_threads));
  const char* const names[] = {"starts", "points", "observations", "intrinsics"};
  for (int i = have_starts ? 0 : 1; i < 4; ++i) {
    const mxArray* cell = i == 0 ? inputs[0] : behind_starts_[i - 1];
    if (mxIsCell(cell) && num_elements(cell) == num_elements(inputs[0])) continue;
    refuse("inputs", std::string(names[i]) + " must be a cell, all of one size.");
  }
  starts_ = have_starts ? inputs[0] : nullptr;
  num_problems_ = num_elements(inputs[0]);
}

Given_inputs Pose_cells::problem(std::size_t k) const {
  return {starts_ != nullptr ? checked_element(starts_, k) : nullptr, checked_element(behind_starts_[0], k),
          checked_element(behind_starts_[1], k), checked_element(behind_starts_[2], k)};
}

void Pose_cells::check_states() const {
  const mxArray* states = behind_starts_[4];
  if (states == nullptr || num_elements(states) == 0) return;
  if (!mxIsCell(states) || num_elements(states) != num_problems_) {
    refuse("inputs", "states must be [], or a cell with an element for each problem.");
  }
}

std::vector<double> Pose_cells::state(std::size_t k) const {
  const mxArray* states = behind_starts_[4];
  if (states == nullptr || num_elements(states) == 0) return {};
  const mxArray* state = element(states, k);
  if (state == nullptr) return {};
  const Host_numbers numbers(state, "A state");
  return {numbers.data(), numbers.data() + numbers.size()};
}

const mxArray* checked_element(const mxArray* cell, std::size_t k) {
  const mxArray* value = element(cell, k);
  if (value == nullptr) refuse("inputs", "A cell has an element without a value.");
  return value;
}

}  // namespace kelvane::mex_engine
