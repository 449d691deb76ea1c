// SPDX-License-Identifier: BSD-3-Clause
// The results of many refinements as one struct of the host.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mex_engine/host_problem.h"
#include "pose_refinement/refine_tasks.h"

namespace kelvane::mex_engine {

/// One of the problems of a call.
struct Refined {
  std::unique_ptr<Host_problem> problem;  ///< null where it could not be read
  const Refine_task* task = nullptr;      ///< what became of it
  std::string identifier, message;        ///< of an error

  bool has_failed() const { return task->error.has_value(); }
  bool is_found() const { return task->is_over && !has_failed(); }
};

/// The first n of them, of which each array has a column or an element: an array of the host costs more than what is in
/// it. matlab/private/refined_rows.m takes it apart. Calls the host alone, and owns nothing.
mxArray* written_results(const std::vector<Refined>& refined, std::size_t n);

/// A cell with the state of each, [] where there is none. Likewise.
mxArray* written_states(const std::vector<Refined>& refined);

}  // namespace kelvane::mex_engine
