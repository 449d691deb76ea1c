// SPDX-License-Identifier: BSD-3-Clause
// What is told of the processor, against what the operating system says of it.
#include "least_squares/instruction_set.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace {

#ifdef KELVANE_WIDE_VECTORS

/// The words behind "flags" in /proc/cpuinfo; none where the system has no such file.
std::set<std::string> flags_of_processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("flags", 0) != 0) continue;
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
  }
  return {};
}

// An instruction set that is missing here is missing in all tests of the kernels: they would be skipped.
TEST(InstructionSet, IsAvailableWhereTheSystemSaysSo) {
  const std::set<std::string> flags = flags_of_processor();
  if (flags.empty()) GTEST_SKIP() << "the system does not say";
  EXPECT_EQ(kelvane::is_available(kelvane::Instruction_set::sse2), flags.count("sse2") == 1);
  EXPECT_EQ(kelvane::is_available(kelvane::Instruction_set::avx2), flags.count("avx2") == 1);
  EXPECT_EQ(kelvane::is_available(kelvane::Instruction_set::avx512), flags.count("avx512f") == 1);
}

#else

TEST(InstructionSet, IsTheNarrowestWhereNoOtherIsBuilt) {
  EXPECT_TRUE(kelvane::is_available(kelvane::Instruction_set::sse2));
  EXPECT_FALSE(kelvane::is_available(kelvane::Instruction_set::avx2));
  EXPECT_FALSE(kelvane::is_available(kelvane::Instruction_set::avx512));
}

#endif

TEST(InstructionSet, BestIsTheWidestThatIsAvailable) {
  kelvane::Instruction_set widest = kelvane::Instruction_set::sse2;
  for (const kelvane::Instruction_set set : kelvane::instruction_sets) {
    if (kelvane::is_available(set)) widest = set;
  }
  EXPECT_EQ(kelvane::best_instruction_set(), widest);
}

}  // namespace
