// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points, compiled for AVX2.
#include "camera_pose/point_kernels.h"

#ifdef KELVANE_WIDE_VECTORS

// All below is compiled for it, and nothing of it can be seen by other sources. No option of the compiler does this: it
// would count for what is included above, too.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC target("avx2")
#endif
#include "camera_pose/point_kernels_body.h"

namespace kelvane {

extern const Point_kernels point_kernels_avx2;
const Point_kernels point_kernels_avx2 = point_kernels_of_width<4>;

}  // namespace kelvane

#ifdef __clang__
#pragma clang attribute pop
#endif

#endif
