// SPDX-License-Identifier: BSD-3-Clause
// Fuzz target: a call of kelvane_engine in the stand-in host, and another one that goes on where it was left.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/byte_source.h"
#include "fuzz/spoiled_engine_call.h"
#include "fuzz/target.h"
#include "trust/engine_outcome.h"

namespace {

void require(const testing::AssertionResult& verdict) {
  if (verdict) return;
  std::fprintf(stderr, "%s\n", verdict.message());
  std::abort();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace engine = trust::engine;
  fuzz::Byte_source bytes(data, size);
  fuzz::Spoiled_engine_call call(bytes);
  const mex_host::Result result = call.run();
  require(engine::ends_well(result));
  if (result.output && call.descends()) require(engine::ends_well(call.go_on(*result.output)));
  if (!result.output || !engine::are_results(*result.output)) return 0;
  const mxArray& states = mex_host::field(*result.output, "state");
  const bool is_over = std::all_of(states.elements.begin(), states.elements.end(),
                                   [](const mxArray::Place& state) { return state.empty(); });
  if (!is_over) require(engine::ends_well(call.go_on(states)));
  return 0;
}
