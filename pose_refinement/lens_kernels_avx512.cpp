// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points behind a lens, compiled for AVX-512.
#include "pose_refinement/lens_kernels.h"

#ifdef KELVANE_WIDE_VECTORS

// All below is compiled for it, and nothing of it can be seen by other sources. No option of the compiler does this: it
// would count for what is included above, too.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f"))), apply_to = function)
#else
#pragma GCC target("avx512f")
#endif
#include "pose_refinement/lens_kernels_body.h"

namespace kelvane {

extern const Lens_kernels lens_kernels_avx512;
const Lens_kernels lens_kernels_avx512 = lens_kernels_of_width<8>;

}  // namespace kelvane

#ifdef __clang__
#pragma clang attribute pop
#endif

#endif
