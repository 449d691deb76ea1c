// SPDX-License-Identifier: BSD-3-Clause
// What tests of every variant of a kernel share.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "least_squares/instruction_set.h"

namespace support {

/// A test for each instruction set; skipped, and said so, where the processor at hand does not have it.
class Every_instruction_set : public testing::TestWithParam<kelvane::Instruction_set> {
 protected:
  void SetUp() override {
    if (!kelvane::is_available(GetParam())) GTEST_SKIP() << "not on this processor";
  }
};

inline std::string name_of_instruction_set(const testing::TestParamInfo<kelvane::Instruction_set>& info) {
  return info.param == kelvane::Instruction_set::sse2   ? "Sse2"
         : info.param == kelvane::Instruction_set::avx2 ? "Avx2"
                                                        : "Avx512";
}

}  // namespace support
