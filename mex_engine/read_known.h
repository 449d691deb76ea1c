// SPDX-License-Identifier: BSD-3-Clause
// What hosts tell beside points and observations: covariances, a prior, fixed directions.
#pragma once

#include <optional>
#include <string>

#include "mex_engine/pose_forms.h"
#include "mex_engine/read_options.h"
#include "mex_engine/read_points.h"

namespace kelvane::mex_engine {

/// The numbers of what is known of one problem.
class Known {
 public:
  /// Reads what the options have and points the problem to it. A prior's pose that looks like the given start is of its
  /// form. Throws Bad_argument.
  Known(const Given_options& options, const mxArray* given_start, const Given_pose& start, const Columns& observations,
        Refine_problem& problem);

  /// Where the numbers of an error of the refinement are in the host's arrays, and what is wrong with them; empty where
  /// it is of something else.
  static std::string message_of(const Bad_argument& error, const Columns& observations);

 private:
  void read_prior(const mxArray* prior, Pose_prior& to);

  std::optional<Host_numbers> covariances_, of_prior_, fixed_;
};

}  // namespace kelvane::mex_engine
