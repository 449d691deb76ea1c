// SPDX-License-Identifier: BSD-3-Clause
// What a fuzzer calls. Each target defines it; libFuzzer brings the main function.
#pragma once

#include <cstddef>
#include <cstdint>

/// Aborts when something is wrong; returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
