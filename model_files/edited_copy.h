// SPDX-License-Identifier: BSD-3-Clause
// A file with other numbers in some places.
#pragma once

#include <cstddef>
#include <vector>

#include "model_files/atomic_file.h"
#include "model_files/model_file.h"

namespace kelvane {

/// Numbers that replace as many, the first of which stands at the offset.
struct Edit {
  std::size_t offset;
  std::vector<double> numbers;
};

/// All bytes but those of the replaced numbers as they are. No two edits overlap.
void write_edited(const Model_file& from, std::vector<Edit> edits, Atomic_file& to);

}  // namespace kelvane
