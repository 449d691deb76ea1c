// SPDX-License-Identifier: BSD-3-Clause
// The instruction sets of the processor at hand, for tests that run every variant.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fw_tools/instruction_set.h"

namespace support {

inline std::vector<fw::Instruction_set> available_instruction_sets() {
  std::vector<fw::Instruction_set> available;
  for (const fw::Instruction_set set : fw::instruction_sets) {
    if (fw::is_available(set)) available.push_back(set);
  }
  return available;
}

inline std::string name_of_instruction_set(const testing::TestParamInfo<fw::Instruction_set>& info) {
  return info.param == fw::Instruction_set::sse2 ? "Sse2" : info.param == fw::Instruction_set::avx2 ? "Avx2" : "Avx512";
}

}  // namespace support
