// SPDX-License-Identifier: BSD-3-Clause
// results = kelvane_engine('refine', starts, points, observations, intrinsics, options, states, seconds, num_threads)
// states = kelvane_engine('descend', the same): the iteration alone, and from where 'refine' makes its results.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "mex_engine/answer.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/refined.h"
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

std::size_t size_of_cells(const Inputs& inputs) {
  const char* const names[] = {"starts", "points", "observations", "intrinsics"};
  for (int i = 0; i < 4; ++i) {
    if (mxIsCell(inputs[i]) && num_elements(inputs[i]) == num_elements(inputs[0])) continue;
    refuse("inputs", std::string(names[i]) + " must be a cell, all of one size.");
  }
  return num_elements(inputs[0]);
}

const mxArray* element_of(const Inputs& inputs, int i, std::size_t k) {
  const mxArray* value = element(inputs[i], k);
  if (value == nullptr) refuse("inputs", "A cell has an element without a value.");
  return value;
}

Deadline deadline_in(double seconds) {
  constexpr double for_ever = 1e6;
  const auto now = std::chrono::steady_clock::now();
  if (!(seconds < for_ever)) return Deadline::max();
  return now + std::chrono::duration_cast<Deadline::duration>(std::chrono::duration<double>(seconds));
}

std::vector<double> state_in(const mxArray* states, std::size_t k) {
  if (states == nullptr || num_elements(states) == 0) return {};
  const mxArray* state = element(states, k);
  if (state == nullptr) return {};
  const Host_numbers numbers(state, "A state");
  return {numbers.data(), numbers.data() + numbers.size()};
}

class Refinements final : public Answer {
 public:
  Refinements(const Inputs& inputs, bool only_states) : only_states_(only_states) {
    const Deadline deadline = deadline_in(number_or(inputs[6], "seconds", std::numeric_limits<double>::infinity()));
    constexpr double most_threads = 1024.0;
    const double num_threads = std::min(number_or(inputs[7], "num_threads", 1.0), most_threads);
    const std::size_t n = size_of_cells(inputs);
    read_all_options(inputs[4], n);
    if (inputs[5] != nullptr && num_elements(inputs[5]) > 0 && !(mxIsCell(inputs[5]) && num_elements(inputs[5]) == n)) {
      refuse("inputs", "states must be [], or a cell of the size of starts.");
    }
    refined_ = std::vector<Refined>(n);
    tasks_.resize(n);
    for (std::size_t k = 0; k < n; ++k) read_or_fail(inputs, k);
    run_tasks(tasks_, static_cast<unsigned>(num_threads), deadline);
    while (num_begun_ < n && (tasks_[num_begun_].has_begun || tasks_[num_begun_].is_over)) ++num_begun_;
    for (std::size_t k = 0; k < n; ++k) take(tasks_[k], refined_[k]);
  }

  void write(int /*num_outputs*/, mxArray* outputs[]) const override {
    outputs[0] = only_states_ ? written_states(refined_) : written_results(refined_, num_begun_);
  }

 private:
  /// A struct for all is read at once, and what is wrong with it is an error of the call.
  void read_all_options(const mxArray* options, std::size_t n) {
    has_own_options_ = mxIsCell(options);
    options_.resize(has_own_options_ ? n : 1);
    if (!has_own_options_) options_[0] = read_options(options);
    if (has_own_options_ && num_elements(options) != n)
      refuse("inputs", "options must be one struct for each problem.");
  }

  void read_or_fail(const Inputs& inputs, std::size_t k) {
    Given_options& options = options_[has_own_options_ ? k : 0];
    Refine_task& task = tasks_[k];
    try {
      if (has_own_options_) options = read_options(element_of(inputs, 4, k));
      const Given_inputs given{element_of(inputs, 0, k), element_of(inputs, 1, k), element_of(inputs, 2, k),
                               element_of(inputs, 3, k)};
      refined_[k].problem = std::make_unique<Host_problem>(given, options);
      task.problem = &refined_[k].problem->problem();
      task.options = &options.refine;
      task.words = &words;
      task.state = state_in(inputs[5], k);
      task.only_state = only_states_;
      task.shall_stop = options.is_stopped;
    } catch (const Bad_argument& error) {
      task.error = error;
    } catch (const std::bad_alloc&) {
      task.error = out_of_memory_;
    }
  }

  static void take(const Refine_task& task, Refined& refined) {
    refined.task = &task;
    if (!task.error) return;
    refined.identifier = std::string("kelvane:") + task.error->identifier();
    refined.message = refined.problem != nullptr ? refined.problem->message_of(*task.error) : task.error->what();
  }

  const Bad_argument out_of_memory_{"memory", "", "out of memory"};  // while there is some left to say so
  const bool only_states_;
  bool has_own_options_ = false;
  std::vector<Given_options> options_;
  std::vector<Refined> refined_;
  std::vector<Refine_task> tasks_;
  std::size_t num_begun_ = 0;
};

}  // namespace

std::unique_ptr<Answer> refine_poses(const Inputs& inputs) { return std::make_unique<Refinements>(inputs, false); }

std::unique_ptr<Answer> descend(const Inputs& inputs) { return std::make_unique<Refinements>(inputs, true); }

}  // namespace kelvane::mex_engine
