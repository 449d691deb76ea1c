// SPDX-License-Identifier: BSD-3-Clause
// The module as a competitor: whole calls of mexFunction in the stand-in host.
#pragma once

#include <string>
#include <vector>

#include "benchmarks/competitor.h"
#include "mex_host.h"

namespace bench {

/// The input arrays of a call, criteria and type only where the type is not 0.
std::vector<mxArray> module_inputs(const Scene& scene, const Task& task);

/// What is timed is one call: checks, copies, iterations, result, and the host's part of it.
Entry module_call();
/// The same of another module, a file built for a host: "other". Throws std::runtime_error when it cannot be loaded.
Entry other_module_call(const std::string& file);

/// What the host itself costs in a call of type 0: a call that asks every input everything once and creates the output.
double host_ns();

/// Time per point of a call of type 0 with many points, relative to one with few; measured in turn, so that a machine
/// that slows down meets both.
double growth_per_point(int few, int many);

}  // namespace bench
