// SPDX-License-Identifier: BSD-3-Clause
// Fields of a struct of options.
#include "mex_engine/read_options.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mex_engine/host_numbers.h"
#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

constexpr double least_positive = std::numeric_limits<double>::min();

/// NaN where it is not one real number.
double number_in(const mxArray* value) {
  if (!mxIsNumeric(value) || num_elements(value) != 1 || mxIsComplex(value)) return std::nan("");
  return *Host_numbers(value, "").data();
}

bool is_given(const mxArray* value) { return value != nullptr && num_elements(value) > 0; }

/// Takes a number of 0 or more, where there is one.
void read_number(const mxArray* value, const char* name, double& number) {
  if (value == nullptr) return;
  number = number_in(value);
  if (!(number >= 0.0)) refuse("option", std::string(name) + " must be a number of 0 or more.");
}

/// Takes a number above 0, where there is one that is not empty.
void read_positive(const mxArray* value, const char* name, double& number) {
  if (!is_given(value)) return;
  number = number_in(value);
  if (!(number >= least_positive) || std::isinf(number)) {
    refuse("option", std::string(name) + " must be a number above 0 and finite.");
  }
}

/// Takes a whole number of 0 or more, where there is one; it may be larger than the largest.
template <typename Whole>
void read_whole(const mxArray* value, const char* name, Whole& number) {
  double wanted = static_cast<double>(number);
  read_number(value, name, wanted);
  if (wanted != std::floor(wanted)) {
    refuse("option", std::string(name) + " must be a whole number; this is " + text_of(wanted) + ".");
  }
  constexpr double most = std::min(9e15, static_cast<double>(std::numeric_limits<Whole>::max()));  // 2^53 and below
  number = static_cast<Whole>(std::min(wanted, most));
}

void read_search(const mxArray* options, Given_options& given) {
  const auto of = [&](const char* name) { return field(options, 0, name); };
  Estimate_options& estimate = given.estimate;
  read_positive(of("MaxReprojectionError"), "MaxReprojectionError", given.max_pixels);
  read_positive(of("MaxAngle"), "MaxAngle", given.max_angle);
  if (is_given(of("Confidence"))) estimate.confidence = number_in(of("Confidence"));
  if (!(estimate.confidence > 0.0 && estimate.confidence < 1.0)) {
    refuse("option", "Confidence must be a number above 0 and below 1.");
  }
  read_whole(of("MaxNumTrials"), "MaxNumTrials", estimate.max_num_trials);
  if (estimate.max_num_trials == 0) refuse("option", "MaxNumTrials must be a number of 1 or more.");
  read_whole(of("Seed"), "Seed", estimate.seed);
}

void read_loss(const mxArray* value, Loss& loss) {
  const char* const names[] = {"none", "huber", "cauchy", "tukey"};
  if (!is_given(value)) return;
  const std::string wanted = text_in(value, "Loss");
  const auto* const found = std::find(std::begin(names), std::end(names), wanted);
  if (found == std::end(names)) refuse("loss", quoted(wanted) + " is not a loss.");
  loss = static_cast<Loss>(found - std::begin(names));
}

}  // namespace

Given_options read_options(const mxArray* options) {
  if (!mxIsStruct(options) || num_elements(options) != 1) {
    refuse("inputs", "options must be a struct, or a cell of structs, one for each problem.");
  }
  Given_options given;
  const auto of = [&](const char* name) { return field(options, 0, name); };
  read_loss(of("Loss"), given.refine.loss);
  read_whole(of("MaxIterations"), words.max_iterations, given.refine.max_iterations);
  read_number(of("StepTolerance"), words.step_tolerance, given.refine.step_tolerance);
  read_number(of("FunctionTolerance"), words.function_tolerance, given.refine.function_tolerance);
  read_positive(of("LossScale"), words.loss_scale, given.refine.loss_scale);
  read_positive(of("NoiseSigma"), "NoiseSigma", given.refine.noise_sigma);
  read_search(options, given);
  given.pose_form = text_in(of("PoseForm"), "PoseForm");
  given.pose_frame = text_in(of("PoseFrame"), "PoseFrame");
  given.output_form = text_in(of("OutputForm"), "OutputForm");
  given.output_frame = text_in(of("OutputFrame"), "OutputFrame");
  const auto if_given = [&](const char* name) { return is_given(of(name)) ? of(name) : nullptr; };
  given.weights = if_given("Weights");
  given.covariances = if_given("ObservationCovariance");
  given.prior = if_given("Prior");
  given.fixed = if_given("Fixed");
  given.is_stopped = is_given(of("Stop")) && mxIsLogical(of("Stop")) && *Host_numbers(of("Stop"), "Stop").data() != 0.0;
  return given;
}

}  // namespace kelvane::mex_engine
