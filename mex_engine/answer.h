// SPDX-License-Identifier: BSD-3-Clause
// What can be asked of the engine.
#pragma once

#include <mex.h>

#include <memory>

namespace kelvane::mex_engine {

/// Everything that has been read and computed for a call, with nothing left but to hand it over.
class Answer {
 public:
  Answer() = default;
  virtual ~Answer() = default;
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;

  /// Makes the host's arrays, one at least. The host's functions may throw or jump out of it: it owns nothing itself.
  virtual void write(int num_outputs, mxArray* outputs[]) const = 0;
};

/// The inputs behind the name of what is asked for; missing ones are null.
struct Inputs {
  int count;
  const mxArray* const* arrays;

  const mxArray* operator[](int i) const { return i < count ? arrays[i] : nullptr; }
};

// Each of these throws Bad_argument or std::bad_alloc. Cells have an element for each of n problems.

/// results = ('refine', starts, points, observations, intrinsics, options, states, seconds, num_threads)
/// starts, points, observations, intrinsics: cells of what kelvane_refine takes. options: a struct for all, or a cell.
/// states: [], or a cell of rows, [] for a problem that has not begun. seconds: until when to begin and go on, without
/// end where missing. num_threads: 1 where missing, 0 for all processors. results: a struct, see written_results().
std::unique_ptr<Answer> refine_poses(const Inputs& inputs);
/// states = ('descend', the same): a cell of rows with which 'refine' goes on or, where it is over, makes the result;
/// [] after an error, where the start has no cost, and where nothing has begun.
std::unique_ptr<Answer> descend(const Inputs& inputs);
/// results = ('estimate', points, observations, intrinsics, options, states, seconds, num_threads)
/// the same without a start, by the options of kelvane_estimate.
std::unique_ptr<Answer> estimate_poses(const Inputs& inputs);
/// states = ('search', the same): as 'descend', the trials alone.
std::unique_ptr<Answer> search_poses(const Inputs& inputs);
/// [seen, J, depth] = ('project', pose, points, intrinsics, options)
/// of N points: d x N, d * N x 6 by [w; dt], and 1 x N. options: a struct with PoseForm and PoseFrame.
std::unique_ptr<Answer> project_points(const Inputs& inputs);
/// value = ('pose', value, form, frame, new_form, new_frame)
/// in the new form, all names being texts; without one as the struct of kelvane_pose.
std::unique_ptr<Answer> convert_pose(const Inputs& inputs);
std::unique_ptr<Answer> describe_camera(const Inputs& inputs);
std::unique_ptr<Answer> convert_camera(const Inputs& inputs);
std::unique_ptr<Answer> undistort_pixels(const Inputs& inputs);
std::unique_ptr<Answer> distort_pixels(const Inputs& inputs);
// These throw File_error as well.
std::unique_ptr<Answer> read_colmap_model(const Inputs& inputs);
std::unique_ptr<Answer> read_bal_file(const Inputs& inputs);
std::unique_ptr<Answer> write_colmap_model(const Inputs& inputs);
std::unique_ptr<Answer> write_bal_file(const Inputs& inputs);
std::unique_ptr<Answer> write_text_file(const Inputs& inputs);

/// The answer to all inputs of a call. Throws as well where too many outputs are wanted.
std::unique_ptr<Answer> answer_to(int num_outputs, int num_inputs, const mxArray* const* inputs);

}  // namespace kelvane::mex_engine
