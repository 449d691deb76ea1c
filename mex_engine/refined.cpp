// SPDX-License-Identifier: BSD-3-Clause
// Array by array. Plain data only: the host's functions may throw or jump.
#include "mex_engine/refined.h"

#include <algorithm>
#include <cstring>

#include "mex_engine/host_camera.h"
#include "mex_engine/host_struct.h"
#include "pose_refinement/motion.h"

namespace kelvane::mex_engine {
namespace {

constexpr const char* names[] = {
    "is_found", "figures",      "pose",       "covariance",      "is_start",    "is_struct",   "num_steps",
    "steps",    "message",      "identifier", "has_alternative", "alternative", "residuals",   "inliers",
    "points",   "observations", "intrinsics", "written",         "state",       "is_estimate", "search"};
constexpr std::size_t num_names = sizeof names / sizeof names[0];

mxArray* created_flags(const std::vector<unsigned char>& flags) {
  mxArray* row = mxCreateLogicalMatrix(1, static_cast<mwSize>(flags.size()));
  std::transform(flags.begin(), flags.end(), mxGetLogicals(row), [](unsigned char flag) { return flag != 0; });
  return row;
}

/// The rotation's columns, then the centre; returns what is behind.
double* put_pose(const Pose& pose, double* to) {
  for (int i = 0; i < 9; ++i) *to++ = pose.rotation[i % 3][i / 3];
  return std::copy_n(pose.centre, 3, to);
}

double* put_step(const Refine_step& step, double* to) {
  *to++ = step.rms;
  *to++ = step.turn;
  *to++ = step.shift;
  return put_pose(step.pose, to);
}

/// Everything that is one number. Of a refinement on the way its number of iterations alone.
void put_figures(const Task& task, double* to) {
  const Refine_result& found = task.result;
  const std::size_t num_iterations = found.history.empty() ? 0 : found.history.size() - 1;
  const double figures[] = {static_cast<double>(found.exit),
                            found.before.robust,
                            found.after.robust,
                            found.before.plain,
                            found.after.plain,
                            found.before.inliers,
                            found.after.inliers,
                            static_cast<double>(task.is_over ? num_iterations : task.num_iterations),
                            found.noise_sigma,
                            static_cast<double>(found.num_inliers),
                            found.loss_scale,
                            static_cast<double>(found.num_behind),
                            static_cast<double>(found.num_left_out)};
  std::copy(std::begin(figures), std::end(figures), to);
}
constexpr std::size_t num_figures = 13;

void put_search(const Estimate_task& task, double* to) {
  const double numbers[] = {static_cast<double>(task.progress.num_trials),
                            static_cast<double>(task.progress.num_trials_needed),
                            static_cast<double>(task.progress.num_inliers), task.log10_chance};
  std::copy(std::begin(numbers), std::end(numbers), to);
}
constexpr std::size_t num_search = 4;

/// Null where the caller's own array is the same.
mxArray* columns_or_null(const Columns& columns) {
  return columns.numbers.is_as_given() ? nullptr : written_columns(columns);
}

/// Null where the caller's own is the same.
mxArray* camera_or_null(const Host_problem& problem) {
  const Camera_model& camera = problem.problem().camera;
  if (camera.sees_directions || (camera.lens.has_value() && problem.has_camera_struct())) return nullptr;
  if (camera.lens.has_value()) {
    const Pictured_camera pictured{*camera.lens};
    return created_cameras(&pictured, 1);
  }
  mxArray* K = created_matrix(3, 3);
  const double columns[] = {camera.fx, 0.0, 0.0, camera.skew, camera.fy, 0.0, camera.cx, camera.cy, 1.0};
  std::copy(std::begin(columns), std::end(columns), mxGetPr(K));
  return K;
}

/// The first n problems as fields of a struct.
class Writer {
 public:
  Writer(const std::vector<Refined>& refined, std::size_t n) : refined_(refined), n_(n) {
    result_ = mxCreateStructMatrix(1, 1, static_cast<int>(num_names), const_cast<const char**>(names));
  }

  mxArray* run() {
    write_numbers();
    write_steps();
    write_cells();
    return result_;
  }

 private:
  void add(const char* name, mxArray* value) {
    const auto* const found = std::find_if(std::begin(names), std::end(names),
                                           [name](const char* other) { return std::strcmp(name, other) == 0; });
    mxSetFieldByNumber(result_, 0, static_cast<int>(found - std::begin(names)), value);
  }

  /// A matrix of so many rows, which `put(refined, column)` fills; zeros where there is no result.
  template <typename Put>
  void add_columns(const char* name, std::size_t rows, const Put& put) {
    mxArray* matrix = created_matrix(rows, n_);
    for (std::size_t k = 0; k < n_; ++k) {
      if (!refined_[k].has_failed()) put(refined_[k], mxGetPr(matrix) + rows * k);
    }
    add(name, matrix);
  }

  template <typename Is>
  void add_flags(const char* name, const Is& is) {
    mxArray* row = mxCreateLogicalMatrix(1, static_cast<mwSize>(n_));
    for (std::size_t k = 0; k < n_; ++k) mxGetLogicals(row)[k] = !refined_[k].has_failed() && is(refined_[k]);
    add(name, row);
  }

  /// A cell of what `make(refined)` returns; null leaves an element empty.
  template <typename Make>
  void add_cell(const char* name, const Make& make) {
    mxArray* cell = mxCreateCellMatrix(1, static_cast<mwSize>(n_));
    for (std::size_t k = 0; k < n_; ++k) {
      mxArray* value = make(refined_[k]);
      if (value != nullptr) mxSetCell(cell, static_cast<mwIndex>(k), value);
    }
    add(name, cell);
  }

  void write_numbers() {
    add_columns("figures", num_figures, [](const Refined& one, double* to) { put_figures(*one.task, to); });
    add_columns("search", num_search, [](const Refined& one, double* to) {
      if (one.estimate != nullptr) put_search(*one.estimate, to);
    });
    add_columns("pose", 12, [](const Refined& one, double* to) {
      put_pose(one.task->is_over ? one.task->result.pose : one.task->step.pose, to);
    });
    add_columns("covariance", 36, [](const Refined& one, double* to) {  // symmetric
      std::copy_n(&one.task->result.covariance[0][0], 36, to);
    });
    const auto has_alternative = [](const Refined& one) {
      return one.is_found() && one.task->result.alternative.has_value();
    };
    add_flags("has_alternative", has_alternative);
    add_columns("alternative", 13, [&](const Refined& one, double* to) {  // RMS and pose
      if (!has_alternative(one)) return;
      *to = one.task->result.alternative->rms;
      put_pose(one.task->result.alternative->pose, to + 1);
    });
    add_flags("is_found", [](const Refined& one) { return one.is_found(); });
    add_flags("is_estimate", [](const Refined& one) { return one.estimate != nullptr; });
    add_flags("is_struct", [](const Refined& one) { return one.problem->is_output_struct(); });
    add_flags("is_start", [](const Refined& one) {
      const bool is_start = one.is_found() && are_same(one.task->result.pose, one.problem->problem().start);
      return is_start && one.problem->has_start() && one.problem->is_start_in_output_form();
    });
  }

  /// Steps of all problems behind each other: of one that is over its history, of one on the way the newest.
  void write_steps() {
    std::size_t total = 0;
    add_columns("num_steps", 1, [&](const Refined& one, double* to) {
      const std::size_t count = one.task->is_over ? one.task->result.history.size() : 1;
      *to = static_cast<double>(count);
      total += count;
    });
    mxArray* steps = created_matrix(15, total);
    double* to = mxGetPr(steps);
    for (std::size_t k = 0; k < n_; ++k) {
      const Task& task = *refined_[k].task;
      if (refined_[k].has_failed()) continue;
      if (!task.is_over) to = put_step(task.step, to);
      for (const Refine_step& step : task.result.history) to = put_step(step, to);
    }
    add("steps", steps);
  }

  void write_cells() {
    const std::string* before = nullptr;  // the same text again is left empty
    add_cell("message", [&](const Refined& one) {
      const std::string& message = one.has_failed() ? one.message : one.task->result.message;
      const bool is_new = before == nullptr || *before != message;
      before = &message;
      return is_new ? mxCreateString(message.c_str()) : nullptr;
    });
    add_cell("identifier",
             [](const Refined& one) { return one.has_failed() ? mxCreateString(one.identifier.c_str()) : nullptr; });
    add_cell("residuals", [](const Refined& one) {
      if (!one.is_found()) return static_cast<mxArray*>(nullptr);
      const std::size_t rows = one.problem->observations().numbers.rows();
      mxArray* residuals = created_matrix(rows, one.task->result.residuals.size() / rows);
      std::copy(one.task->result.residuals.begin(), one.task->result.residuals.end(), mxGetPr(residuals));
      return residuals;
    });
    add_cell("inliers",
             [](const Refined& one) { return one.is_found() ? created_flags(one.task->result.is_inlier) : nullptr; });
    add_cell("points",
             [](const Refined& one) { return one.is_found() ? columns_or_null(one.problem->points()) : nullptr; });
    add_cell("observations", [](const Refined& one) {
      if (!one.is_found()) return static_cast<mxArray*>(nullptr);
      const Columns& seen = one.problem->observations();
      return seen.numbers.rows() == 3 ? written_directions(seen) : columns_or_null(seen);
    });
    add_cell("intrinsics", [](const Refined& one) { return one.is_found() ? camera_or_null(*one.problem) : nullptr; });
    add_cell("written", [](const Refined& one) {
      if (one.has_failed() || one.problem->is_output_struct()) return static_cast<mxArray*>(nullptr);
      return one.problem->written(one.task->is_over ? one.task->result.pose : one.task->step.pose);
    });
    add_cell("state", [](const Refined& one) {
      return one.task->is_over ? nullptr : created_row(one.task->state.data(), one.task->state.size());
    });
  }

  const std::vector<Refined>& refined_;
  std::size_t n_;
  mxArray* result_;
};

}  // namespace

mxArray* written_results(const std::vector<Refined>& refined, std::size_t n) { return Writer(refined, n).run(); }

mxArray* written_states(const std::vector<Refined>& refined) {
  mxArray* states = mxCreateCellMatrix(1, static_cast<mwSize>(refined.size()));
  for (std::size_t k = 0; k < refined.size(); ++k) {
    const std::vector<double>& state = refined[k].task->state;
    if (!state.empty()) mxSetCell(states, static_cast<mwIndex>(k), created_row(state.data(), state.size()));
  }
  return states;
}

}  // namespace kelvane::mex_engine
