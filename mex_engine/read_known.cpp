// SPDX-License-Identifier: BSD-3-Clause
// Symmetric matrices lie in rows as they do in columns.
#include "mex_engine/read_known.h"

#include "mex_engine/host_struct.h"
#include "mex_engine/sentence.h"

namespace kelvane::mex_engine {
namespace {

Numbers numbers_of(const Host_numbers& numbers) { return {numbers.data(), numbers.size()}; }

Host_numbers read_covariances(const mxArray* array, const Columns& observations) {
  const std::size_t d = observations.numbers.rows();
  const std::size_t n = observations.numbers.columns();
  Host_numbers numbers(array, "ObservationCovariance", Host_numbers::Shape::pages);
  const bool is_square = numbers.rows() == d && numbers.columns() == d * numbers.num_pages();
  if (is_square && (numbers.num_pages() == 1 || numbers.num_pages() == n)) return numbers;
  refuse("size", "ObservationCovariance must be " + text_of_size(d, d) + ", or " + text_of_size(d, d) + " x " +
                     text(n) + ", a page for each point; this is " + numbers.text_of_shape() + ".");
}

Host_numbers read_matrix(const mxArray* array, const char* name) {
  Host_numbers numbers(array, name);
  if (numbers.rows() == 6 && numbers.columns() == 6) return numbers;
  refuse("size", std::string(name) + " must be 6 x 6; this is " + numbers.text_of_shape() + ".");
}

Host_numbers read_fixed(const mxArray* array) {
  Host_numbers numbers(array, "Fixed");
  if (numbers.rows() == 6) return numbers;
  refuse("size", "Fixed must be 6 x m, a direction [w; dt] in each column; this is " + numbers.text_of_shape() + ".");
}

/// One that looks like the start is of its form.
Pose pose_of_prior(const mxArray* pose, const Given_options& options, const mxArray* given_start,
                   const Given_pose& start) {
  const bool is_like_start = mxGetClassID(pose) == mxGetClassID(given_start) && mxGetM(pose) == mxGetM(given_start) &&
                             mxGetN(pose) == mxGetN(given_start);
  try {
    if (is_like_start && !mxIsStruct(pose)) return read_raw_pose(pose, start.form->name, name_of(start.frame)).pose;
    return read_raw_pose(pose, "", mxIsStruct(pose) ? "" : options.pose_frame).pose;
  } catch (const Bad_argument& error) {
    refuse(error.identifier(), std::string("Prior.pose: ") + error.what());
  }
}

}  // namespace

Known::Known(const Given_options& options, const mxArray* given_start, const Given_pose& start,
             const Columns& observations, Refine_problem& problem) {
  if (options.covariances != nullptr) {
    covariances_ = read_covariances(options.covariances, observations);
    problem.covariances = numbers_of(*covariances_);
  }
  if (options.fixed != nullptr) {
    fixed_ = read_fixed(options.fixed);
    problem.fixed = numbers_of(*fixed_);
  }
  if (options.prior != nullptr) {
    read_prior(options.prior, problem.prior);
    problem.prior.pose = pose_of_prior(field(options.prior, 0, "pose"), options, given_start, start);
  }
}

void Known::read_prior(const mxArray* prior, Pose_prior& to) {
  const bool has_covariance = has_field(prior, "covariance");
  if (!has_field(prior, "pose") || has_covariance == has_field(prior, "information")) {
    refuse("prior", "Prior must be a struct with the fields pose and either covariance or information.");
  }
  of_prior_ = read_matrix(field(prior, 0, has_covariance ? "covariance" : "information"),
                          has_covariance ? "Prior.covariance" : "Prior.information");
  (has_covariance ? to.covariance : to.information) = numbers_of(*of_prior_);
}

std::string Known::message_of(const Bad_argument& error, const Columns& observations) {
  const std::string& name = error.name();
  const std::size_t d = observations.numbers.rows();
  const bool is_entry = error.where() == Bad_argument::Where::entry;
  const std::size_t k = error.number();
  if (name == "covariances") {
    std::string place = "ObservationCovariance";
    if (is_entry) {
      place += "(" + text(k % d + 1) + ", " + text(k / d % d + 1) + ", " + text(k / (d * d) + 1) + ")";
    } else if (error.where() == Bad_argument::Where::point) {
      place += "(:, :, " + text(k + 1) + ")";
    }
    return place + error.sentence();
  }
  const bool is_of_prior = name == "prior.covariance" || name == "prior.information";
  if (!is_of_prior && name != "fixed" && name.rfind("prior.pose", 0) != 0) return {};
  const std::string own = (name[0] == 'f' ? "Fixed" : "Prior") + (name[0] == 'f' ? "" : name.substr(5));
  if (is_entry && (is_of_prior || name == "fixed")) return text_of_entry(own, k % 6, k / 6) + error.sentence();
  return own + (is_entry ? "(" + text(k + 1) + ")" : "") + error.sentence();
}

}  // namespace kelvane::mex_engine
