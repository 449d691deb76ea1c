// SPDX-License-Identifier: BSD-3-Clause
// Where a refinement stands, as a structure and as a row of plain numbers.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "pose_refinement/descent.h"

namespace kelvane {

/// Where another descent begins.
enum class Other_side {
  behind,  ///< at the pose mirrored behind the target
  tilted   ///< at the target tilted the other way
};

/// How the descent ended that came before that one.
struct First_descent {
  Refine_exit exit;
  double scale;             ///< of the loss, in the end
  std::size_t num_entries;  ///< of the history, that are its own
  Other_side next;
};

/// All that the rest of a refinement depends on, beside its problem and options.
struct Refinement_state {
  Descent_state descent;
  std::optional<First_descent> first = {};
};

/// A state with an entry at least, to be kept anywhere.
std::vector<double> row_of(const Refinement_state& state);

/// There and back, for a loss. Throws Bad_argument where the row is no state; its numbers may still be any.
Refinement_state state_of_row(const double* row, std::size_t size, Loss loss);

/// Throws that.
[[noreturn, gnu::cold]] void refuse_state();

}  // namespace kelvane
