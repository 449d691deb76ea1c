// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction, compiled for AVX2.
#include "least_squares/reduction_kernels.h"

#ifdef KELVANE_WIDE_VECTORS

// All below is compiled for it, and nothing of it can be seen by other sources. No option of the compiler does this: it
// would count for what is included above, too.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC target("avx2")
#endif
#include "least_squares/reduction_kernels_body.h"

namespace kelvane {

extern const Reduction_kernels reduction_kernels_avx2;
const Reduction_kernels reduction_kernels_avx2 = reduction_kernels_of_width<4>;

}  // namespace kelvane

#ifdef __clang__
#pragma clang attribute pop
#endif

#endif
