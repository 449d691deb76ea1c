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

// Each of these throws Bad_argument or std::bad_alloc.
std::unique_ptr<Answer> refine_poses(const Inputs& inputs);
std::unique_ptr<Answer> descend(const Inputs& inputs);
std::unique_ptr<Answer> project_points(const Inputs& inputs);
std::unique_ptr<Answer> convert_pose(const Inputs& inputs);

/// The answer to all inputs of a call. Throws as well where too many outputs are wanted.
std::unique_ptr<Answer> answer_to(int num_outputs, int num_inputs, const mxArray* const* inputs);

}  // namespace kelvane::mex_engine
