// SPDX-License-Identifier: BSD-3-Clause
// The kernels over points, compiled for SSE2, which every 64-bit x86 has.
#include "camera_pose/point_kernels_body.h"

extern const Point_kernels point_kernels_sse2;
const Point_kernels point_kernels_sse2 = point_kernels_of_width<2>;
