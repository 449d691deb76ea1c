// SPDX-License-Identifier: BSD-3-Clause
// The kernels of the reduction, compiled for AVX-512.
#include "least_squares/reduction_kernels.h"

#ifdef KELVANE_WIDE_VECTORS

// All below is compiled for it, and nothing of it can be seen by other sources. No option of the compiler does this: it
// would count for what is included above, too.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f"))), apply_to = function)
#else
#pragma GCC target("avx512f")
#endif
#include "least_squares/reduction_kernels_body.h"

namespace kelvane {

extern const Reduction_kernels reduction_kernels_avx512;
const Reduction_kernels reduction_kernels_avx512 = reduction_kernels_of_width<8>;

}  // namespace kelvane

#ifdef __clang__
#pragma clang attribute pop
#endif

#endif
