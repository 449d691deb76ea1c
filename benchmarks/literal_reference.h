// SPDX-License-Identifier: BSD-3-Clause
// The yardstick: Gauss-Newton as first written down, with every step solved by cv::solve on the whole Jacobian.
#pragma once

#include "benchmarks/competitor.h"

namespace bench {

/// Types 0, 1, 2, 10 and -2. What is timed goes from the arrays of a call to the refined search vector, with the data
/// laid out as the module's published constructors take it: points as vectors of three, copied into every function.
Entry literal_reference();

}  // namespace bench
