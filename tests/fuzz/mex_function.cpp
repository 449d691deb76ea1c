// SPDX-License-Identifier: BSD-3-Clause
// Fuzz target: one call of mexFunction in the stand-in host.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/byte_source.h"
#include "fuzz/spoiled_call.h"
#include "fuzz/target.h"
#include "trust/outcome.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Byte_source bytes(data, size);
  const fuzz::Spoiled_call call(bytes);
  const testing::AssertionResult verdict = trust::ends_well(call.run());
  if (!verdict) {
    std::fprintf(stderr, "%s\n", verdict.message());
    std::abort();
  }
  return 0;
}
